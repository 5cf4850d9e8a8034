// The neighbours of the pixels near the frame's border. Inside, a pixel's neighbours lie at fixed distances;
// at the border some are outside the frame and others were drawn in their place.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>

#include "compact/kernels.h"
#include "compact/memory.h"

namespace lm::compact {

class Border {
 public:
  // Draws the neighbours of a frame, in the order of its pixels, from `random`. Places are y * `stride` + x.
  // False when an allocation fails.
  bool draw(const Shape& shape, std::int32_t stride, const std::function<int()>& random);

  std::size_t bytes() const { return bytes_; }

  // Of row `y`.
  BorderRow row(std::int32_t y) const;

  // Calls act(x, entries) for the border pixels of row `y`.
  template <typename Act>
  void forEach(std::int32_t y, Act act) const {
    const BorderRow mine = row(y);
    const std::int32_t count = mine.whole ? width_ : 4;
    for (std::int32_t i = 0; i < count; ++i) {
      const std::int32_t x = mine.whole || i < 2 ? i : width_ - 4 + i;
      act(x, mine.entries + static_cast<std::size_t>(i) * neighbourEntries);
    }
  }

 private:
  bool isWhole(std::int32_t y) const { return width_ < 5 || y < 2 || y >= height_ - 2; }

  std::int32_t width_ = 0;
  std::int32_t height_ = 0;
  std::size_t bytes_ = 0;
  std::unique_ptr<std::int32_t, Freed> entries_;
};

}  // namespace lm::compact
