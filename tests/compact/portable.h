// The kernels without vector instructions of the processor, as far as the compiler does not find any itself:
// what other architectures than x86-64 run.
#pragma once

#include "compact/kernels.h"

namespace lm::compact::portable {
TakeRowFn takeRow;
LearnRowFn learnRow;
SplitRowFn splitRow;
SeedRowFn seedRow;
}  // namespace lm::compact::portable

const lm::compact::Kernels& portableKernels();
