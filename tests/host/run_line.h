// The options of a command line of `lightmotion run`.
#pragma once

#include <string>
#include <vector>

#include "host/commands/run/run_options.h"

namespace program {

// `arguments`: after `run`. Fails the test when they are refused.
lm::host::commands::run::RunOptions run_line(const std::vector<std::string>& arguments);

}  // namespace program
