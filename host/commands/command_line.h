// The command line.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "host/base/failure.h"

namespace lm::host::commands {

// Either what a command has to do, or a text to print (help, version, an error) and the status to exit with.
struct Command {
  std::function<int()> work{};  // returns the exit status; may throw Failure
  base::ExitStatus status = base::kDone;
  std::string text{};
};

// `arguments`: without the program's name.
Command parse_command_line(const std::vector<std::string>& arguments);

}  // namespace lm::host::commands
