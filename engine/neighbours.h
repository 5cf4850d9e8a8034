// The neighbour tables of the model and of the morphology.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "config/polygon.h"

struct int128_t;
class kAMBLE;

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

// Fills every pixel's array of `numEntries` with the indices of its neighbours at `offsets`; an entry outside
// the frame becomes a copy of another entry of the same pixel, drawn from rand() in index order.
void fillNeighbours(const std::vector<int*>& arrays, std::int32_t numEntries, const std::vector<pnt>& offsets,
                    const FrameShape& shape);

// Fills the array of one pixel near the border, at (x, y), in the same way.
void fillAtBorder(int* entries, std::int32_t numEntries, const std::vector<pnt>& offsets,
                  const FrameShape& shape, std::int32_t x, std::int32_t y);

// Index offsets of the neighbours of an interior pixel: the same for all of them.
std::vector<int> neighbourDistances(const std::vector<pnt>& offsets, std::int32_t numEntries,
                                    const FrameShape& shape);

// Fixed neighbour offsets for interior blocks; they save the reads of the pixels' arrays.
class NeighbourDistances {
 public:
  // For no block.
  NeighbourDistances() = default;
  // For blocks whose neighbourhoods are inside the frame; for none when `distances` is empty.
  NeighbourDistances(const kAMBLE& engine, const std::vector<int>& distances);

  // The offsets for the 32 pixels from `begin` on, or null when their arrays must be read.
  const int* of(std::size_t begin) const {
    if (begin < first_ || begin >= last_) return nullptr;
    const std::uint32_t column = static_cast<std::uint32_t>(begin) % width_;
    return column >= reach && column <= lastColumn_ ? distances_ : nullptr;
  }

  // Offsets of an interior block, or null.
  const int* inside() const { return distances_; }

 private:
  static constexpr std::uint32_t reach = neighbourRadius;

  const int* distances_ = nullptr;
  std::uint32_t width_ = 1;
  std::uint32_t lastColumn_ = 0;  // where a block may start
  std::size_t first_ = 0;         // blocks start at [first_, last_)
  std::size_t last_ = 0;
};

// Fills the direct neighbours of every pixel that are inside the frame; other fields keep their values.
void fillDirectNeighbours(std::vector<int128_t>& records, const FrameShape& shape);

}  // namespace lm
