// Which pixels of a frame the engine learns, and which it only looks at because watched ones may ask them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "compact/planes.h"

namespace lm::compact {

struct Watched {
  std::vector<std::uint32_t> bits;  // a word per block, row by row
  std::vector<BlockRange> learned;  // of each row: blocks that touch the regions
  std::vector<BlockRange> taken;    // of each row: those, and what they may ask about
  std::int64_t pixels = 0;
  std::vector<bool> start;  // of the first pixels, for the pruning of the last ones
};

// `mask`: 1 for each pixel of a frame that is watched, else 0. Throws std::bad_alloc.
Watched watchedBy(const std::uint8_t* mask, const Shape& shape);

}  // namespace lm::compact
