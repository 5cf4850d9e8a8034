// `lightmotion run`.
#pragma once

#include "host/commands/run/run_options.h"

namespace lm::host::commands::run {

// Processes one source. Returns the program's exit status; throws Failure.
int run(const RunOptions& options);

// Throws Failure (kRefused) if the configuration is not usable for any source, or the plug-in not at all.
void try_configuration(const RunOptions& options);

}  // namespace lm::host::commands::run
