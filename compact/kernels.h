// The steps of the compact engine that look at every pixel, a row at a time. Each source is compiled once for
// every instruction-set level that is worth it. Not exported.
#pragma once

#include <cstddef>
#include <cstdint>

#include "compact/planes.h"

namespace lm::compact {

// ---- taking a row -----------------------------------------------------------------------------------------

// What a row of a frame is compared on.
struct TakeRule {
  std::int32_t channels;     // bytes of a pixel of the frame: 1, 3 or 4
  std::int32_t channel;      // compared in this frame, 0 to 2
  std::int32_t nextChannel;  // compared in the next one
  std::uint8_t unchanged;    // frame difference up to which a pixel is unchanged
  std::uint8_t sameLight;    // background difference up to which its light is
};

// Where the differences of a row go; read again while this row and its neighbours are learned.
struct RowChanges {
  std::uint8_t* difference;  // plane: frame to frame
  std::uint32_t* changed;    // bits: that difference exceeds TakeRule::unchanged
  std::uint32_t* lit;        // bits: the difference to the background exceeds TakeRule::sameLight
};

// Compares the blocks of a row with the frame before and with the background, and keeps the next channel for
// the next frame. `pixels`: of the row; `left`: pixels of the frame from there on, no others are read.
using TakeRowFn = void(const TakeRule& rule, const std::uint8_t* pixels, std::size_t left, BlockRange blocks,
                       const RowPlanes& row, const RowChanges& changes);

// ---- learning a row ---------------------------------------------------------------------------------------

inline constexpr std::size_t neighbourEntries = 25;  // of every pixel

// How still foreground is absorbed: pixels whose life exceeds `limit` are, and their life becomes `absorbed`.
// `band2` and `band3` are the upper bands of the frame difference in gainLife (engine/life.h).
struct LifeRule {
  float limit;
  float absorbed;
  std::int32_t band2;
  std::int32_t band3;
};

struct LearnRule {
  std::int32_t channels;  // as in TakeRule
  std::uint8_t radius;    // of each channel, up to 254
  std::uint8_t needed;    // samples that must match for background
  bool absorbs;           // foreground that stays still is absorbed
  bool litEverywhere;     // the light of most of the scene changed in the frame before
  LifeRule life;
  std::uint8_t nextSlot[samplesPerPixel];        // after writing a slot
  std::uint8_t nextNeighbour[neighbourEntries];  // after asking one
};

// Where the neighbour of a border pixel lies that it asks in turn; see border.h.
struct BorderRow {
  const std::int32_t* entries;  // of the row's first border pixel: neighbourEntries for each
  bool whole;                   // every pixel of the row is a border pixel, not only two at each end
};

struct LearnRow {
  const std::uint8_t* pixels;  // of the frame
  std::size_t left;            // pixels of the frame from there on
  std::int32_t width;
  std::int32_t stride;  // of a border entry: pixels of a row of a plane
  std::int32_t y;
  RowChanges changes;
  const std::uint32_t* lit[5];  // of the rows y - 2 to y + 2
  BorderRow border;
};

// Of background pixels in a frame.
struct LightSums {
  std::int64_t excluded = 0;  // pixels inside the regions that are not background, or were absorbed
  std::int64_t lit = 0;       // background whose light changed
};

// Classifies the pixels of a row and updates what is remembered of them.
using LearnRowFn = void(const LearnRule& rule, const LearnRow& input, BlockRange blocks, const RowPlanes& row,
                        LightSums& sums);

// ---- seeding ----------------------------------------------------------------------------------------------

// Splits a row of a frame into its compared channels, one array each.
using SplitRowFn = void(std::int32_t channels, const std::uint8_t* pixels, std::size_t width,
                        std::uint8_t* const* split);

// Fills the samples of blocks. `rows[dy + 2][channel]`: split rows, that may be read two pixels beyond both
// ends.
using SeedRowFn = void(std::size_t planes, const std::uint8_t* const (*rows)[maxChannels], BlockRange blocks,
                       std::uint8_t* samples);

// ---- versions ---------------------------------------------------------------------------------------------

struct Kernels {
  TakeRowFn* takeRow;
  LearnRowFn* learnRow;
  SplitRowFn* splitRow;
  SeedRowFn* seedRow;
};

namespace sse2 {
TakeRowFn takeRow;
LearnRowFn learnRow;
SplitRowFn splitRow;
SeedRowFn seedRow;
}  // namespace sse2
namespace sse41 {
TakeRowFn takeRow;
LearnRowFn learnRow;
SplitRowFn splitRow;
SeedRowFn seedRow;
}  // namespace sse41
namespace avx2 {
TakeRowFn takeRow;
LearnRowFn learnRow;
SplitRowFn splitRow;
SeedRowFn seedRow;
}  // namespace avx2

// The versions for a processor of `level`. Pure.
const Kernels& kernelsFor(int level);

}  // namespace lm::compact
