// The kernels of object extraction: they convert a row of a byte mask to bits and back, so that the steps
// between work on 64 pixels at a time. Not exported.
//
// In a row of bits, bit k of word w is pixel 64 * w + k. Rows need no alignment. contracts.h holds what is
// asserted in debug builds; nothing else is checked.
#pragma once

#include <cstddef>
#include <cstdint>

namespace lm {

inline constexpr std::size_t wordPixels = 64;

constexpr std::size_t wordsFor(std::size_t pixels) { return (pixels + wordPixels - 1) / wordPixels; }

// What the bytes of a mask mean. All other values are neither set nor cleared.
struct MaskValues {
  std::uint8_t set;
  std::uint8_t relabel;  // also set; set pixels are written back as this value
  std::uint8_t cleared;
};

// Writes the set and the cleared pixels of a row of `pixels` bytes to wordsFor(pixels) words each, two
// distinct arrays; bits after the row's end are 0. Returns whether any pixel is set, or is not cleared.
using PackRowFn = bool(const std::uint8_t* row, std::size_t pixels, const MaskValues& values,
                       std::uint64_t* set, std::uint64_t* cleared);
PackRowFn packRow_c, packRow_avx2;

// Writes set pixels back: those in `kept` become `relabel`, the others `cleared`. Pixels with other values
// keep them.
using UnpackRowFn = void(std::uint8_t* row, std::size_t pixels, const MaskValues& values,
                         const std::uint64_t* kept);
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
