// The options of a command line of `lightmotion run`.
#pragma once

#include <string>
#include <vector>

#include "host/run_options.h"

namespace program {

// `arguments`: after `run`. Fails the test when they are refused.
lm::host::RunOptions run_line(const std::vector<std::string>& arguments);

}  // namespace program
