// What the morphology of the engine asks about a pixel's direct neighbours.
#pragma once

#include <cstddef>
#include <cstdint>

#include "base/integers.h"
#include "engine/kamble.h"

namespace lm {

// Whether the engine's table has the neighbours of all its pixels.
inline bool hasDirectNeighbours(const kAMBLE& engine) {
  return engine.nbr4Idx.size() == countOf(engine.numPixel);
}

// Whether `test` holds for the mask value of any direct neighbour of the pixel within the frame.
template <typename Test>
bool anyNeighbour(const kAMBLE& engine, const std::uint8_t* mask, std::int32_t pixel, Test test) {
  const int128_t& neighbours = engine.nbr4Idx[static_cast<std::size_t>(pixel)];
  for (const std::int32_t index : {neighbours.left, neighbours.right, neighbours.up, neighbours.down}) {
    if (index != -1 && test(mask[index])) return true;
  }
  return false;
}

}  // namespace lm
