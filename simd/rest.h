// What the vector versions leave to the base level: defined in reference.cpp, so that none of it can be
// compiled for a higher level. Not exported.
#pragma once

#include <cstddef>
#include <cstdint>

namespace lm {

// The 32-bit product width * height * channels, wrapping.
int imageBytes(int width, int height, int channels);

// out[i] = |a[k] - b[k]| for k = begin + i * step below `end`. Nothing when step is below 1.
void stridedDiff(const std::uint8_t* a, const std::uint8_t* b, std::uint8_t* out, std::ptrdiff_t begin,
                 std::ptrdiff_t end, std::ptrdiff_t step);

// Region pruning as the vector versions do it.
// Kept: whole blocks stay as they are, and byte k of the tail is tested against roi[k], not against the
// region byte beside it. Every processor has at least one vector version, so this is what callers get and
// rely on.
void pruneTail(std::uint8_t* mask, const std::uint8_t* roi, int count, int block);

}  // namespace lm
