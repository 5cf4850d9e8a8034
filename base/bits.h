// The pixels of a block, as the bits of a mask.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>

namespace lm {

// Calls `act` with the position of every set bit, lowest first.
template <typename Act>
void forEachBit(std::uint32_t bits, Act act) {
  for (; bits != 0; bits &= bits - 1) act(static_cast<std::size_t>(std::countr_zero(bits)));
}

// Whether no bit at position `count` or above is set.
constexpr bool fitsIn(std::uint32_t bits, std::size_t count) { return count >= 32 || bits >> count == 0; }

}  // namespace lm
