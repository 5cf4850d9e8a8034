// What the compact engine remembers of a frame's pixels, and where it lies.
//
// A frame is cut row by row into blocks of 32 pixels; the last block of a row may hold fewer. A plane has one
// element for every pixel of every block, so that a row of a plane is a whole number of blocks. In a word of
// bits, bit k is pixel k of the block.
#pragma once

#include <cstddef>
#include <cstdint>

#include "simd/samples.h"

namespace lm::compact {

inline constexpr std::size_t blockPixels = 32;

// Channels of a sample that are compared, at most; more are not kept.
inline constexpr std::size_t maxChannels = 3;

struct Shape {
  std::int32_t width = 0;
  std::int32_t height = 0;
  std::int32_t channels = 0;  // bytes of a pixel of the frame: 1, 3 or 4

  std::size_t blocks() const { return (static_cast<std::size_t>(width) + blockPixels - 1) / blockPixels; }
  std::size_t planes() const { return channels == 1 ? 1 : maxChannels; }
  std::size_t rowBytes() const {
    return static_cast<std::size_t>(width) * static_cast<std::size_t>(channels);
  }
  bool operator==(const Shape&) const = default;
};

// Blocks [begin, end) of a row.
struct BlockRange {
  std::size_t begin = 0;
  std::size_t end = 0;
  bool empty() const { return begin >= end; }
};

// The part of the planes that belongs to one row. The samples of a block follow each other slot by slot, and
// in a slot channel by channel: 32 bytes each.
struct RowPlanes {
  std::uint8_t* background[maxChannels];  // the value most recently written into the samples
  std::uint8_t* previous;                 // the previous frame, of the one channel that is compared next
  std::uint8_t* samples;
  std::uint8_t* slot;       // that the next write replaces
  std::uint8_t* neighbour;  // that is asked next whether its light changed too
  std::uint8_t* turn;       // low half: position in the refresh cycle; high half: frames to rest
  std::uint8_t* resting;    // per block: whether a pixel rests
  float* life;
  const std::uint32_t* region;  // bits: inside the usable region
  std::uint32_t* foreground;    // bits: of the frame before, until the row is learned
  std::uint32_t* alive;         // bits: life of 1 or more
};

constexpr std::size_t sampleBytes(std::size_t planes) { return samplesPerPixel * planes * blockPixels; }

}  // namespace lm::compact
