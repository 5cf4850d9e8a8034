// The kernels of object extraction: a row of a byte mask as bits, and back, so that the steps between work on
// 64 pixels at a time. Not exported.
//
// Each has a plain version, which defines it, and an AVX2 version; maskKernels() picks once, by level. A row
// of bits is a row of words: bit k of word w is pixel 64 * w + k. Kernels check nothing; rows need no
// alignment.
#pragma once

#include <cstddef>
#include <cstdint>

namespace lm {

inline constexpr std::size_t wordPixels = 64;

constexpr std::size_t wordsFor(std::size_t pixels) { return (pixels + wordPixels - 1) / wordPixels; }

// What the bytes of a mask mean. All other values are neither set nor cleared.
struct MaskValues {
  std::uint8_t set;
  std::uint8_t relabel;  // set as well, and what set pixels are written back as
  std::uint8_t cleared;
};

// The set and the cleared pixels of a row of `pixels` bytes; bits behind the row's end are 0. Writes
// wordsFor(pixels) words of each. Returns whether any pixel is set, or not cleared.
using PackRowFn = bool(const std::uint8_t* row, std::size_t pixels, const MaskValues& values,
                       std::uint64_t* set, std::uint64_t* cleared);

// Writes set pixels back: those in `kept` become `relabel`, the others `cleared`. Pixels of other values
// stay.
using UnpackRowFn = void(std::uint8_t* row, std::size_t pixels, const MaskValues& values,
                         const std::uint64_t* kept);

PackRowFn packRow_c, packRow_avx2;
UnpackRowFn unpackRow_c, unpackRow_avx2;

struct MaskKernels {
  PackRowFn* packRow;
  UnpackRowFn* unpackRow;
};

// The versions for a processor of `level`. Pure.
MaskKernels maskKernelsFor(int level);

// The versions for this processor; chosen on the first call.
const MaskKernels& maskKernels();

}  // namespace lm
