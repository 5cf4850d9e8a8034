#include "tests/host/run_line.h"

#include <gtest/gtest.h>

#include <CLI/CLI.hpp>

namespace program {

lm::host::commands::run::RunOptions run_line(const std::vector<std::string>& arguments) {
  CLI::App run;
  lm::host::commands::run::RunOptions options;
  lm::host::commands::run::add_run_options(run, options);
  EXPECT_NO_THROW(run.parse(std::vector<std::string>(arguments.rbegin(), arguments.rend())));
  EXPECT_EQ(lm::host::commands::run::complete_run_options(run, options), "");
  return options;
}

}  // namespace program
