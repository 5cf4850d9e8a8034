// Asking a pixel's direct neighbours.
#pragma once

#include <cstddef>
#include <cstdint>

#include "engine/kamble.h"

namespace lm {

// Whether `test` holds for the mask value of any direct neighbour within the frame. Needs nbr4Idx.
template <typename Test>
bool anyNeighbour(const kAMBLE& engine, const std::uint8_t* mask, std::int32_t pixel, Test test) {
  const int128_t& neighbours = engine.nbr4Idx[static_cast<std::size_t>(pixel)];
  for (const std::int32_t index : {neighbours.left, neighbours.right, neighbours.up, neighbours.down}) {
    if (index != -1 && test(mask[index])) return true;
  }
  return false;
}

}  // namespace lm
