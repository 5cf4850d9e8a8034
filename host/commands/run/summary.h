// The summary at the end of a run.
#pragma once

#include <string>

#include "host/commands/run/figures.h"
#include "host/commands/run/run_options.h"

namespace lm::host::commands::run {

// Several lines, each ending in a line feed: the figures, and the names of the outputs.
std::string summary(const std::string& source, const Figures& figures, const RunOptions& options);

}  // namespace lm::host::commands::run
