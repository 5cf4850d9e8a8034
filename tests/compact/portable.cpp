// The kernels as SIMDe composes them where it uses no vector instructions of the processor.
#define SIMDE_NO_NATIVE
#define LIGHTMOTION_LEVEL portable
#include "tests/compact/portable.h"

#include "compact/learn_row.h"
#include "compact/seed_row.h"
#include "compact/take_row.h"

const lm::compact::Kernels& portableKernels() {
  using namespace lm::compact::portable;
  static constexpr lm::compact::Kernels kernels{takeRow, learnRow, splitRow, seedRow};
  return kernels;
}
