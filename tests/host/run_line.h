// Parses a command line of `lightmotion run`.
#pragma once

#include <string>
#include <vector>

#include "host/commands/run_command.h"

namespace program {

// `arguments`: after `run`. The test fails if they are refused.
lm::host::commands::run::RunOptions run_line(const std::vector<std::string>& arguments);
lm::host::commands::archive::ArchiveOptions archive_line(const std::vector<std::string>& arguments);

}  // namespace program
