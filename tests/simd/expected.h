// A second, plain implementation of the kernels, which shares no code with the library.
#pragma once

#include "simd/simd.h"

namespace expected {

simd::ReplaceFn replace;
simd::GenRdDiffFn genRdDiff;
simd::MatchFn match;

// The reference rules.
simd::PruneFn prune;
simd::TouchFn touch;

// The rules of the vector versions with blocks of `block` bytes or columns.
void pruneBlocks(std::uint8_t* mask, const std::uint8_t* roi, int count, int block);
bool touchBlocks(const std::tuple<int, int, int, int>& box, const std::uint8_t* first,
                 const std::uint8_t* second, int stride, int block);

}  // namespace expected
