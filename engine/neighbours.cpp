#include "engine/neighbours.h"

namespace lm {

std::vector<pnt> neighbourOffsets() {
  std::vector<pnt> offsets;
  constexpr std::int32_t reach = neighbourRadius;
  for (std::int32_t dx = -reach; dx <= reach; ++dx) {
    for (std::int32_t dy = -reach; dy <= reach; ++dy) offsets.push_back({dx, dy});
  }
  return offsets;
}

std::int32_t FrameShape::indexAt(std::int64_t x, std::int64_t y) const {
  if (x < 0 || x >= width || y < 0 || y >= height) return -1;
  const std::int64_t index = y * width + x;
  return index < count ? static_cast<std::int32_t>(index) : -1;
}

void fillNeighbours(int* entries, std::int32_t numEntries, const std::vector<pnt>& offsets,
                    const FrameShape& shape, std::int32_t x, std::int32_t y,
                    const std::function<int()>& draw) {
  for (std::int32_t k = 0; k < numEntries; ++k) {
    const pnt& offset = offsets[static_cast<std::size_t>(k)];
    entries[k] = shape.indexAt(std::int64_t{x} + offset.x, std::int64_t{y} + offset.y);
  }
  for (std::int32_t k = 0; k < numEntries; ++k) {
    while (entries[k] == -1) entries[k] = entries[draw() % numEntries];
  }
}

void fillDirectNeighbours(int128_t& record, const FrameShape& shape, std::int32_t x, std::int32_t y) {
  const auto store = [&](std::int32_t& field, std::int64_t column, std::int64_t row) {
    const std::int32_t index = shape.indexAt(column, row);
    if (index != -1) field = index;
  };
  store(record.up, x, std::int64_t{y} - 1);
  store(record.right, std::int64_t{x} + 1, y);
  store(record.down, x, std::int64_t{y} + 1);
  store(record.left, std::int64_t{x} - 1, y);
}

}  // namespace lm
