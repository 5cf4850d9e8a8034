// The memory of the compact engine: one allocation for everything that has an element for every pixel.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <vector>

#include "compact/kernels.h"

namespace lm::compact {

// For what came from malloc.
struct Freed {
  void operator()(void* memory) const { std::free(memory); }
};

class Memory {
 public:
  // Makes the planes of a frame, all 0. Pages that are never used stay without memory. False when an
  // allocation fails.
  bool make(const Shape& shape);

  RowPlanes row(std::int32_t y) const;
  std::uint32_t* region(std::int32_t y) const { return region_ + wordsBefore(y); }
  const std::uint32_t* foreground(std::int32_t y) const { return foreground_ + wordsBefore(y); }
  std::size_t bytes() const { return bytes_; }
  std::size_t stride() const { return blocks_ * blockPixels; }  // pixels of a row of a plane

 private:
  std::size_t wordsBefore(std::int32_t y) const { return static_cast<std::size_t>(y) * blocks_; }

  std::unique_ptr<void, Freed> memory_;
  std::size_t bytes_ = 0;
  std::size_t blocks_ = 0;
  std::size_t planes_ = 0;
  std::uint8_t* background_[maxChannels] = {};
  std::uint8_t* previous_ = nullptr;
  std::uint8_t* samples_ = nullptr;
  std::uint8_t* slot_ = nullptr;
  std::uint8_t* neighbour_ = nullptr;
  std::uint8_t* turn_ = nullptr;
  std::uint8_t* resting_ = nullptr;
  float* life_ = nullptr;
  std::uint32_t* region_ = nullptr;
  std::uint32_t* foreground_ = nullptr;
  std::uint32_t* alive_ = nullptr;
};

// The last rows of what rows share with their neighbours: differences and their bits.
class RecentRows {
 public:
  static constexpr std::int32_t ahead = 2;  // rows that are taken before a row is learned

  // Throws std::bad_alloc.
  void make(std::size_t blocks);

  RowChanges of(std::int32_t y);
  const std::uint32_t* lit(std::int32_t y) const { return lit_.data() + place(y) * blocks_; }

 private:
  static constexpr std::size_t kept = 8;  // from y - 2 to y + 2, and a power of two
  static std::size_t place(std::int32_t y) { return static_cast<std::size_t>(y + 8) % kept; }

  std::size_t blocks_ = 0;
  std::vector<std::uint8_t> differences_;
  std::vector<std::uint32_t> changed_, lit_;
};

}  // namespace lm::compact
