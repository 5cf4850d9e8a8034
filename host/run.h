// `lightmotion run`.
#pragma once

#include "host/plugin.h"
#include "host/run_options.h"

namespace lm::host {

// From source to outputs. Returns the program's exit status; throws Failure.
int run(const RunOptions& options);

// Starts the plug-in with what would be its document for a source of any size. Throws Failure (kRefused) when
// no source could be looked at with it.
void try_configuration(Plugin& plugin, const RunOptions& options);

}  // namespace lm::host
