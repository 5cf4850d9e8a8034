#include "engine/neighbours.h"

#include <cstdlib>

#include "engine/kamble.h"

namespace lm {

std::vector<pnt> neighbourOffsets() {
  std::vector<pnt> offsets;
  for (std::int32_t dx = -2; dx <= 2; ++dx) {
    for (std::int32_t dy = -2; dy <= 2; ++dy) offsets.push_back({dx, dy});
  }
  return offsets;
}

std::int32_t FrameShape::indexAt(std::int64_t x, std::int64_t y) const {
  if (x < 0 || x >= width || y < 0 || y >= height) return -1;
  const std::int64_t index = y * width + x;
  return index < count ? static_cast<std::int32_t>(index) : -1;
}

void fillNeighbours(int* entries, std::int32_t numEntries, const std::vector<pnt>& offsets,
                    const FrameShape& shape, std::int32_t pixel) {
  const std::int32_t x = pixel % shape.width;
  const std::int32_t y = pixel / shape.width;
  for (std::int32_t k = 0; k < numEntries; ++k) {
    const pnt& offset = offsets[static_cast<std::size_t>(k)];
    entries[k] = shape.indexAt(std::int64_t{x} + offset.x, std::int64_t{y} + offset.y);
  }
  for (std::int32_t k = 0; k < numEntries; ++k) {
    while (entries[k] == -1) entries[k] = entries[std::rand() % numEntries];
  }
}

void fillDirectNeighbours(int128_t& record, const FrameShape& shape, std::int32_t pixel) {
  const std::int64_t x = pixel % shape.width;
  const std::int64_t y = pixel / shape.width;
  const auto store = [](std::int32_t& field, std::int32_t index) {
    if (index != -1) field = index;
  };
  store(record.up, shape.indexAt(x, y - 1));
  store(record.right, shape.indexAt(x + 1, y));
  store(record.down, shape.indexAt(x, y + 1));
  store(record.left, shape.indexAt(x - 1, y));
}

}  // namespace lm
