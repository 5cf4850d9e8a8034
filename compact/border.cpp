#include "compact/border.h"

#include <algorithm>
#include <cstdlib>

#include "engine/neighbours.h"

namespace lm::compact {

bool Border::draw(const Shape& shape, std::int32_t stride, const std::function<int()>& random) {
  width_ = shape.width;
  height_ = shape.height;
  const auto width = static_cast<std::size_t>(shape.width);
  const auto height = static_cast<std::size_t>(shape.height);
  const bool all = width < 5 || height < 5;
  const std::size_t pixels = all ? width * height : 4 * width + 4 * (height - 4);
  bytes_ = pixels * neighbourEntries * sizeof(std::int32_t);
  entries_.reset(static_cast<std::int32_t*>(std::malloc(bytes_)));
  if (entries_ == nullptr) return false;

  const std::vector<pnt> offsets = neighbourOffsets();
  const FrameShape frame{shape.width, shape.height, shape.width * shape.height};
  std::int32_t* entries = entries_.get();
  for (std::int32_t y = 0; y < height_; ++y) {
    const bool whole = isWhole(y);
    for (std::int32_t x = 0; x < width_; ++x) {
      if (!whole && x == 2) x = width_ - 2;
      fillNeighbours(entries, neighbourEntries, offsets, frame, x, y, random);
      std::transform(entries, entries + neighbourEntries, entries,
                     [&](std::int32_t index) { return index / width_ * stride + index % width_; });
      entries += neighbourEntries;
    }
  }
  return true;
}

BorderRow Border::row(std::int32_t y) const {
  const auto width = static_cast<std::size_t>(width_);
  const auto row = static_cast<std::size_t>(y);
  std::size_t before = row * width;
  if (width_ >= 5 && y >= 2) {
    const auto inner = static_cast<std::size_t>(std::max(0, std::min(y, height_ - 2) - 2));
    const auto last = static_cast<std::size_t>(std::max(0, y - std::max(2, height_ - 2)));
    before = 2 * width + 4 * inner + last * width;
  }
  return {entries_.get() + before * neighbourEntries, isWhole(y)};
}

}  // namespace lm::compact
