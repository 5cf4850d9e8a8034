// `lightmotion run`.
#pragma once

#include "host/options.h"

namespace lm::host {

// From source to outputs. Returns the program's exit status; throws Failure.
int run(const Options& options);

}  // namespace lm::host
