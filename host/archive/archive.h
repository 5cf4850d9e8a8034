// `lightmotion run ... --out DIR`: many files, one after another or several at a time.
#pragma once

#include "host/run_options.h"

namespace lm::host {

// Processes every file that has no results yet, each in its own process; a failing file does not stop the
// others. Returns the program's exit status; throws Failure.
int run_archive(const RunOptions& options);

}  // namespace lm::host
