// `lightmotion run ... --out DIR`: many files, one after another or several at a time.
#pragma once

#include "host/run_options.h"

namespace lm::host {

// Works on every file that has no results yet, each in a process of its own, and goes on whatever happens to
// one of them. Returns the program's exit status; throws Failure.
int run_archive(const RunOptions& options);

}  // namespace lm::host
