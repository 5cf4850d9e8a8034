// The adaptive minimum component size: when a frame has no box but several small components close together,
// components of a quarter of the minimum count from the next frame on; afterwards the minimum rises
// again.
#pragma once

#include <cstdint>
#include <vector>

#include "objects/box.h"

namespace lm {

// Components of a frame that were too small to count.
class SmallComponents {
 public:
  // Adds the component whose first pixel is at column `x` and row `y`.
  void add(std::int32_t x, std::int32_t y);

  // Whether there are enough of them to decide.
  bool judgeable() const { return entries_.size() >= 2; }

  // Whether they are close to their common centre in a frame of `frameWidth` pixels; when judgeable().
  bool huddle(std::int32_t frameWidth);

 private:
  std::vector<boxRect> entries_;  // only x and y are used
  float sumX_ = 0.0F;
  float sumY_ = 0.0F;
};

// The working minimum, in pixels, and the frames left before it may rise.
struct ComponentMinimum {
  std::int32_t working;
  std::int32_t hold;
};

// The minimum after a frame. `configured`: where it rises back to.
ComponentMinimum adaptMinimum(ComponentMinimum minimum, std::int32_t configured, bool anyBox,
                              SmallComponents& small, std::int32_t frameWidth);

}  // namespace lm
