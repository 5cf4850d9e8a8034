#include "engine/neighbours.h"

#include <algorithm>
#include <cassert>
#include <cstdlib>

#include "base/integers.h"
#include "engine/engine_state.h"
#include "engine/kamble.h"
#include "simd/model_kernels.h"

namespace lm {

void fillAtBorder(int* entries, std::int32_t numEntries, const std::vector<pnt>& offsets,
                  const FrameShape& shape, std::int32_t x, std::int32_t y) {
  for (std::int32_t k = 0; k < numEntries; ++k) {
    const pnt& offset = offsets[static_cast<std::size_t>(k)];
    entries[k] = shape.indexAt(std::int64_t{x} + offset.x, std::int64_t{y} + offset.y);
  }
  for (std::int32_t k = 0; k < numEntries; ++k) {
    while (entries[k] == -1) entries[k] = entries[std::rand() % numEntries];
  }
}

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

std::vector<int> neighbourDistances(const std::vector<pnt>& offsets, std::int32_t numEntries,
                                    const FrameShape& shape) {
  std::vector<int> distances;
  for (std::int32_t k = 0; k < numEntries; ++k) {
    const pnt& offset = offsets[static_cast<std::size_t>(k)];
    distances.push_back(wrapAdd(wrapMul(offset.y, shape.width), offset.x));
  }
  return distances;
}

NeighbourDistances::NeighbourDistances(const kAMBLE& engine, const std::vector<int>& distances) {
  const std::size_t width = countOf(stateOf(engine).nbrWidth);
  const std::size_t rows = width == 0 ? 0 : countOf(engine.numPixel) / width;
  constexpr std::size_t margins = 2 * std::size_t{reach};
  const bool roomForABlock = width >= blockPixels + margins && rows > margins;
  if (distances.empty() || distances.size() != countOf(engine.numNbr) || !roomForABlock) return;
  distances_ = distances.data();
  width_ = static_cast<std::uint32_t>(width);
  lastColumn_ = static_cast<std::uint32_t>(width - blockPixels - reach);
  first_ = reach * width;
  last_ = (rows - reach) * width;
}

void fillNeighbours(const std::vector<int*>& arrays, std::int32_t numEntries, const std::vector<pnt>& offsets,
                    const FrameShape& shape) {
  assert(arrays.size() >= countOf(shape.count) && offsets.size() >= countOf(numEntries));
  const std::vector<int> distances = neighbourDistances(offsets, numEntries, shape);
  constexpr std::int32_t reach = neighbourRadius;
  std::int32_t x = 0;
  std::int32_t y = 0;
  for (std::int32_t pixel = 0; pixel < shape.count; ++pixel) {
    int* entries = arrays[static_cast<std::size_t>(pixel)];
    const bool interior = x >= reach && x + reach < shape.width && y >= reach &&
                          shape.indexAt(x + reach, std::int64_t{y} + reach) != -1;
    if (interior) {
      for (std::size_t k = 0; k < distances.size(); ++k) entries[k] = pixel + distances[k];
    } else {
      fillAtBorder(entries, numEntries, offsets, shape, x, y);
    }
    if (++x == shape.width) {
      x = 0;
      ++y;
    }
  }
}

void fillDirectNeighbours(std::vector<int128_t>& records, const FrameShape& shape) {
  assert(records.size() >= countOf(shape.count));
  const auto store = [](std::int32_t& field, bool exists, std::int32_t index) {
    if (exists) field = index;
  };
  std::int32_t x = 0;
  for (std::int32_t pixel = 0; pixel < shape.count; ++pixel) {
    int128_t& record = records[static_cast<std::size_t>(pixel)];
    store(record.up, pixel >= shape.width, pixel - shape.width);
    store(record.right, x + 1 < shape.width && pixel + 1 < shape.count, pixel + 1);
    store(record.down, pixel < shape.count - shape.width, pixel + shape.width);
    store(record.left, x > 0, pixel - 1);
    if (++x == shape.width) x = 0;
  }
}

}  // namespace lm
