// What the kernels compute, once more, as plainly as possible and sharing nothing with the library.
#pragma once

#include "simd/simd.h"

namespace expected {

simd::ReplaceFn replace;
simd::GenRdDiffFn genRdDiff;
simd::MatchFn match;

// The reference rule, and that of the vector versions with blocks of 16 and 32 bytes.
simd::PruneFn prune, pruneBlocks16, pruneBlocks32;

// The reference rule, and that of the vector version with blocks of 16 columns.
simd::TouchFn touch, touchBlocks16;

}  // namespace expected
