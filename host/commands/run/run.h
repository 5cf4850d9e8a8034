// `lightmotion run`.
#pragma once

#include "host/commands/run/run_options.h"
#include "host/detector/plugin.h"

namespace lm::host::commands::run {

// Processes one source. Returns the program's exit status; throws Failure.
int run(const RunOptions& options);

// Starts the plug-in with the configuration for a source of any size. Throws Failure (kRefused) if the
// configuration is not usable for any source.
void try_configuration(detector::Plugin& plugin, const RunOptions& options);

}  // namespace lm::host::commands::run
