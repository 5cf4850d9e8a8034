// What the vector versions delegate to the base level: defined in reference.cpp, so that none of it is
// compiled for a higher level. Not exported.
#pragma once

#include <cstddef>
#include <cstdint>

namespace lm {

// The 32-bit product width * height * channels, wrapping.
int imageBytes(int width, int height, int channels);

// out[i] = |a[k] - b[k]| for k = begin + i * step below `end`. Writes nothing if step < 1. begin >= 0.
void stridedDiff(const std::uint8_t* a, const std::uint8_t* b, std::uint8_t* out, std::ptrdiff_t begin,
                 std::ptrdiff_t end, std::ptrdiff_t step);

// Region pruning as the vector versions do it.
// Kept: whole blocks are left unchanged, and byte k of the tail is tested against roi[k], not against its own
// region byte. Every processor has a vector version, so callers depend on this.
void pruneTail(std::uint8_t* mask, const std::uint8_t* roi, int count, int block);

}  // namespace lm
