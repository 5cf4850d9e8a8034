// The neighbour tables of the model and of the morphology.
#pragma once

#include <cassert>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

#include "base/integers.h"
#include "config/polygon.h"
#include "engine/kamble.h"
#include "engine/rules.h"

namespace lm {

// Of a pixel's neighbourhood, a square around it.
inline constexpr std::int32_t neighbourRadius = 2;

// The offsets of the neighbourhood, x outer and y inner, each from -neighbourRadius to neighbourRadius.
std::vector<pnt> neighbourOffsets();

// A frame of `count` pixels in rows of `width`; `height` rows, unless the product of the sizes wrapped.
struct FrameShape {
  std::int32_t width;
  std::int32_t height;
  std::int32_t count;

  // Index of the pixel at (x, y), or -1 outside the frame.
  std::int32_t indexAt(std::int64_t x, std::int64_t y) const;
};

// Fills the array of the pixel at (x, y): `numEntries` indices of its neighbours at `offsets`. An entry
// outside the frame becomes a copy of another one, drawn in the order of the entries. `draw`: rand(), or
// another source of such numbers.
void fillNeighbours(int* entries, std::int32_t numEntries, const std::vector<pnt>& offsets,
                    const FrameShape& shape, std::int32_t x, std::int32_t y,
                    const std::function<int()>& draw);

// Fills the direct neighbours of the pixel at (x, y) that are inside the frame; other fields keep their
// values.
void fillDirectNeighbours(int128_t& record, const FrameShape& shape, std::int32_t x, std::int32_t y);

// The pixel's next neighbour in turn; -1 in its array is the pixel itself.
inline std::size_t takeNeighbour(kAMBLE& engine, std::size_t pixel) {
  const std::uint32_t entry = engine.nbrCursor[pixel];
  assert(entry < countOf(engine.numNbr));
  engine.nbrCursor[pixel] = nextInRing(entry, engine.numNbr);
  const int neighbour = engine.nbrIdx[pixel][entry];
  return neighbour == -1 ? pixel : static_cast<std::size_t>(neighbour);
}

}  // namespace lm
