#include "tests/host/run_line.h"

#include <gtest/gtest.h>

#include <CLI/CLI.hpp>

namespace program {
namespace {

namespace commands = lm::host::commands;

commands::RunRequest request(const std::vector<std::string>& arguments) {
  CLI::App run;
  commands::RunRequest request;
  commands::add_run_request(run, request);
  EXPECT_NO_THROW(run.parse(std::vector<std::string>(arguments.rbegin(), arguments.rend())));
  EXPECT_EQ(commands::complete(run, request), "");
  return request;
}

}  // namespace

commands::run::RunOptions run_line(const std::vector<std::string>& arguments) {
  return request(arguments).run;
}

commands::archive::ArchiveOptions archive_line(const std::vector<std::string>& arguments) {
  return request(arguments).archive;
}

}  // namespace program
