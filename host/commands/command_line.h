// The command line.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "host/base/failure.h"

namespace lm::host::commands {

// Either a command to run, or a text to print (help, version, an error) and the exit status.
struct Command {
  std::function<int()> work{};  // returns the exit status; may throw Failure
  base::ExitStatus status = base::kDone;
  std::string text{};
};

// `arguments`: without the program's name.
Command parse_command_line(const std::vector<std::string>& arguments);

}  // namespace lm::host::commands
