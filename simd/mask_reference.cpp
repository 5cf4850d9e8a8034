// The reference versions of object extraction's kernels.
#include <algorithm>
#include <cassert>

#include "simd/contracts.h"

namespace lm {
namespace {

bool isSet(std::uint8_t byte, const MaskValues& values) {
  return byte == values.set || byte == values.relabel;
}

// Whether all `count` bytes are `value`: most of a mask is blank, and the compiler vectorises this loop.
bool isAll(const std::uint8_t* bytes, std::size_t count, std::uint8_t value) {
  std::uint8_t difference = 0;
  for (std::size_t k = 0; k < count; ++k) difference |= static_cast<std::uint8_t>(bytes[k] ^ value);
  return difference == 0;
}

}  // namespace

bool packRow_c(const std::uint8_t* row, std::size_t pixels, const MaskValues& values, std::uint64_t* set,
               std::uint64_t* cleared) {
  assert(canPackRow(pixels, set, cleared));
  bool holds = false;
  for (std::size_t begin = 0; begin < pixels; begin += wordPixels, ++set, ++cleared) {
    const std::size_t count = std::min(wordPixels, pixels - begin);
    const std::uint8_t* bytes = row + begin;
    const std::uint64_t all = ~std::uint64_t{0} >> (wordPixels - count);
    if (isAll(bytes, count, values.cleared)) {
      *cleared = all;
      *set = isSet(values.cleared, values) ? all : 0;
      holds |= *set != 0;
      continue;
    }
    *set = *cleared = 0;
    for (std::size_t k = 0; k < count; ++k) {
      *set |= std::uint64_t{isSet(bytes[k], values)} << k;
      *cleared |= std::uint64_t{bytes[k] == values.cleared} << k;
    }
    holds = true;
  }
  return holds;
}

void unpackRow_c(std::uint8_t* row, std::size_t pixels, const MaskValues& values, const std::uint64_t* kept) {
  assert(canUnpackRow(pixels, kept));
  for (std::size_t i = 0; i < pixels; ++i) {
    if (!isSet(row[i], values)) continue;
    const bool stays = (kept[i / wordPixels] >> (i % wordPixels) & 1) != 0;
    row[i] = stays ? values.relabel : values.cleared;
  }
}

}  // namespace lm
