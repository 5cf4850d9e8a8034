#include "compact/watched.h"

#include <algorithm>

namespace lm::compact {
namespace {

BlockRange around(const BlockRange& range, std::size_t blocks) {
  return {range.begin > 0 ? range.begin - 1 : 0, std::min(range.end + 1, blocks)};
}

BlockRange united(const BlockRange& a, const BlockRange& b) {
  if (a.empty()) return b;
  if (b.empty()) return a;
  return {std::min(a.begin, b.begin), std::max(a.end, b.end)};
}

std::vector<BlockRange> takenFor(const std::vector<BlockRange>& learned, std::size_t blocks) {
  const std::size_t height = learned.size();
  std::vector<BlockRange> taken(height);
  for (std::size_t y = 0; y < height; ++y) {
    if (learned[y].empty()) continue;
    const BlockRange range = around(learned[y], blocks);
    const std::size_t first = y < 2 ? 0 : y - 2;
    for (std::size_t row = first; row <= std::min(y + 2, height - 1); ++row) {
      taken[row] = united(taken[row], range);
    }
  }
  return taken;
}

}  // namespace

Watched watchedBy(const std::uint8_t* mask, const Shape& shape) {
  const auto width = static_cast<std::size_t>(shape.width);
  const auto height = static_cast<std::size_t>(shape.height);
  const std::size_t blocks = shape.blocks();
  Watched watched;
  watched.bits.resize(blocks * height);
  watched.learned.resize(height);
  watched.start.resize(std::min<std::size_t>(32, width * height));
  for (std::size_t i = 0; i < watched.start.size(); ++i) watched.start[i] = mask[i] == 1;
  for (std::size_t y = 0; y < height; ++y) {
    std::uint32_t* words = watched.bits.data() + y * blocks;
    BlockRange& range = watched.learned[y];
    for (std::size_t x = 0; x < width; ++x) {
      if (*mask++ == 0) continue;
      const std::size_t block = x / blockPixels;
      words[block] |= 1U << (x % blockPixels);
      range = united(range, {block, block + 1});
      ++watched.pixels;
    }
  }
  watched.taken = takenFor(watched.learned, blocks);
  return watched;
}

}  // namespace lm::compact
