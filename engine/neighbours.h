// The neighbour tables of the model and of the morphology.
#pragma once

#include <cstdint>
#include <vector>

#include "config/polygon.h"

struct int128_t;

namespace lm {

// The 25 offsets of the 5 x 5 neighbourhood, x outer and y inner, each from -2 to 2.
std::vector<pnt> neighbourOffsets();

// A frame of `count` pixels in rows of `width`; `height` rows, unless the product of the sizes wrapped.
struct FrameShape {
  std::int32_t width;
  std::int32_t height;
  std::int32_t count;

  // Index of the pixel at (x, y), or -1 outside the frame.
  std::int32_t indexAt(std::int64_t x, std::int64_t y) const;
};

// Fills every pixel's array of `numEntries` with the indices of its neighbours at `offsets`; positions
// outside the frame take a random other entry of the same pixel, drawn from rand() in index order.
void fillNeighbours(const std::vector<int*>& arrays, std::int32_t numEntries, const std::vector<pnt>& offsets,
                    const FrameShape& shape);

// Fills the direct neighbours of every pixel that exist; fields of those that do not are left as they are.
void fillDirectNeighbours(std::vector<int128_t>& records, const FrameShape& shape);

}  // namespace lm
