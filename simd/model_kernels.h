// The kernels of the background model: the bulk part of the per-pixel rules of engine/. They skip blocks
// without work and compare a pixel with eight samples at a time. Not exported.
//
// Blocks are 32 pixels (fewer at the end of a range); bit k of a mask is pixel k of the block. Planes need no
// alignment. contracts.h holds what is asserted in debug builds; nothing else is checked.
#pragma once

#include <cstddef>
#include <cstdint>

#include "simd/samples.h"

namespace lm {

inline constexpr std::size_t blockPixels = 32;

// ---- taking a frame ---------------------------------------------------------------------------------------

struct FramePlanes {
  const std::uint8_t* frame;  // null: the frame is already in curFrame
  std::uint8_t* curFrame;
  std::uint8_t* prevFrame;
  const std::uint8_t* bgImg;
  std::uint8_t* rdDiff;     // null: not wanted
  std::uint8_t* illumDiff;  // null: not wanted
  std::int32_t channels;    // 1, 3 or 4
  std::int32_t channel;     // the one to compare, 0 to 2
  bool keep;                // copy the frame into prevFrame as well, after the comparison
};

// Copies the pixels [begin, end) of `frame` into curFrame and compares them, on one channel, with those of
// prevFrame (rdDiff) and of bgImg (illumDiff).
using TakeFrameFn = void(const FramePlanes& planes, std::size_t begin, std::size_t end);
TakeFrameFn takeFrame_c, takeFrame_avx2;

// ---- classification ---------------------------------------------------------------------------------------

// How still foreground is absorbed: pixels whose life exceeds `limit` are, and their life becomes `absorbed`.
// `band2` and `band3` are the upper bands of the frame difference in gainLife (simd/life.h).
struct LifeRule {
  float limit;
  float absorbed;
  std::int32_t band2;
  std::int32_t band3;
};

struct ClassifyPlanes {
  const std::uint8_t* roiMask;
  const std::uint8_t* rdDiff;
  const std::uint8_t* prevFgMask;
  std::uint8_t* fgMask;
  std::uint8_t* absorbMask;
  float* fgLife;
  std::int32_t unchanged;
  bool accountLife;
  LifeRule life;
};

// Disjoint bit masks of the block's busy pixels. The others are idle: outside the regions and 0 in fgMask; or
// background before, changed by at most `unchanged` and without a life to account for (`accountLife` is off,
// or fgMask is 0, absorbMask is not 255 and the life is below 1).
struct BusyPixels {
  std::uint32_t outside;    // outside the regions, not 0 in fgMask
  std::uint32_t unchanged;  // unchanged background with a life; only if `accountLife`
  std::uint32_t absorbed;   // changed or foreground before, the life exceeds the limit; only if `accountLife`
  std::uint32_t compared;   // the others: their samples decide

  bool any() const { return (outside | unchanged | absorbed | compared) != 0; }
};

struct BusyBlock {
  std::size_t begin;
  BusyPixels pixels;
};

// Looks for busy pixels below `end` in the blocks that start at `from`, from + 32, ... and lists the blocks
// that have some in `found`, at most `room` >= 1. Returns how many and sets `from` to where the next call
// continues.
using FindBusyFn = std::size_t(const ClassifyPlanes& planes, std::size_t& from, std::size_t end,
                               BusyBlock* found, std::size_t room);
FindBusyFn findBusy_c, findBusy_avx2;

// Updates fgMask, absorbMask and fgLife of the busy pixels of the block at `begin`, all below `end`.
// `matched`: the pixels of `compared` with enough matching samples. Touches no pixel from `end` on.
using SettleBlockFn = void(const ClassifyPlanes& planes, std::size_t begin, std::size_t end,
                           const BusyPixels& busy, std::uint32_t matched);
SettleBlockFn settleBlock_c, settleBlock_avx2;

// ---- matching ---------------------------------------------------------------------------------------------

inline constexpr std::uint32_t nothingMatched = 999;

// How pixels are compared with their samples (samplesPerPixel slots of 4 bytes). The distance is the sum of
// the absolute differences of the first three bytes (of the first one, with one channel); a sample matches if
// no difference exceeds `radius`. Slots are compared in order until `needed` have matched. With one channel
// the count is tested after every slot; with more, only after a match.
struct MatchRule {
  std::int32_t channels;  // 1, 3 or 4
  std::int32_t radius;
  std::int32_t needed;
};

// Compares the pixels `wanted` of a block; the result holds those with enough matching samples. Sets minDist
// of each wanted pixel to the smallest distance of a sample that matched before the comparison ended, or 999.
// `samples`, `values`, `minDist`: of the block's first pixel.
using MatchBlockFn = std::uint32_t(const MatchRule& rule, const std::uint8_t* samples,
                                   const std::uint8_t* values, std::uint32_t wanted, std::uint32_t* minDist);
MatchBlockFn matchBlock_c, matchBlock_avx2;

// ---- update -----------------------------------------------------------------------------------------------

struct UpdatePlanes {
  const std::uint8_t* roiMask;
  const std::uint8_t* rdDiff;
  const std::uint8_t* prevFgMask;
  const std::uint8_t* fgMask;
  const std::uint8_t* absorbMask;
  const std::uint8_t* illumDiff;  // read only if `watchLight`
  std::int32_t* updTimer;
  std::int32_t unchanged;
  std::int32_t sameLight;
  bool absorbing;
  bool watchLight;
};

// The pixels of a block, inside the regions, whose samples may have to be replaced.
struct UpdateWork {
  std::uint32_t absorbed;  // absorbMask is 255; only if `absorbing`
  std::uint32_t lit;       // other background whose illumDiff exceeds `sameLight`; only if `watchLight`
  std::uint32_t changed;   // other background that was foreground or changed by more than `unchanged`

  bool any() const { return (absorbed | lit | changed) != 0; }
};

struct UpdateBlock {
  std::size_t begin;
  UpdateWork work;
};

// Decrements updTimer (wrapping) of every pixel inside the regions below `end`, block by block from `from`
// on, and lists the blocks with work in `found`, at most `room` >= 1. Returns how many and sets `from` to
// where the next call continues. If `watchLight`, adds to `examined` the number of background pixels inside
// that are not absorbed.
using FindUpdateWorkFn = std::size_t(const UpdatePlanes& planes, std::size_t& from, std::size_t end,
                                     UpdateBlock* found, std::size_t room, std::int64_t& examined);
FindUpdateWorkFn findUpdateWork_c, findUpdateWork_avx2;

// ---- versions ---------------------------------------------------------------------------------------------

struct ModelKernels {
  TakeFrameFn* takeFrame;
  FindBusyFn* findBusy;
  SettleBlockFn* settleBlock;
  MatchBlockFn* matchBlock;
  FindUpdateWorkFn* findUpdateWork;
};

// The versions for a processor of `level`. Pure.
ModelKernels modelKernelsFor(int level);

// The versions for this processor; chosen on the first call.
const ModelKernels& modelKernels();

}  // namespace lm
