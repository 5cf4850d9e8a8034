// The kernels of the background model: what the per-pixel rules of engine/ need in bulk, so that whole blocks
// without anything to do are passed over and samples are compared eight at a time. Not exported.
//
// Each has a plain version, which defines it, and an AVX2 version; modelKernels() picks once, by level.
// Blocks are 32 pixels (fewer at the end of a range); bit k of a mask is pixel k of the block. Kernels check
// nothing; planes need no alignment.
#pragma once

#include <cstddef>
#include <cstdint>

#include "simd/samples.h"

namespace lm {

inline constexpr std::size_t blockPixels = 32;

// ---- taking a frame in
// -----------------------------------------------------------------------------------------------

struct FramePlanes {
  const std::uint8_t* frame;  // null: the frame is in curFrame already
  std::uint8_t* curFrame;
  std::uint8_t* prevFrame;
  const std::uint8_t* bgImg;
  std::uint8_t* rdDiff;     // null: not wanted
  std::uint8_t* illumDiff;  // null: not wanted
  std::int32_t channels;    // 1, 3 or 4
  std::int32_t channel;     // to compare, 0 to 2
  bool keep;                // then take the frame into prevFrame as well
};

// Copies the pixels [begin, end) of `frame` into curFrame and compares them, on one channel, with those of
// prevFrame (rdDiff) and of bgImg (illumDiff).
using TakeFrameFn = void(const FramePlanes& planes, std::size_t begin, std::size_t end);

// ---- classification
// -----------------------------------------------------------------------------------------

// How still foreground is absorbed: lives above `limit` are, and then hold `absorbed`. `band2` and `band3`
// are the upper bands of the frame difference in gainLife (simd/life.h).
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

// The pixels of a block that need a look this frame, each in one of the masks. The others are idle: outside
// the regions and 0 in fgMask; or background before, changed by at most `unchanged` and without a life to
// account for (`accountLife` is off, or fgMask is 0, absorbMask is not 255 and the life is below 1).
struct BusyPixels {
  std::uint32_t outside;    // the regions
  std::uint32_t unchanged;  // background that goes on
  std::uint32_t absorbed;   // the life is above the limit, while `accountLife`
  std::uint32_t compared;   // the others: their samples decide

  bool any() const { return (outside | unchanged | absorbed | compared) != 0; }
};

struct BusyBlock {
  std::size_t begin;
  BusyPixels pixels;
};

// Looks for busy pixels below `end` in the blocks that start at `from`, from + 32, ... and lists the blocks
// that have some in `found`, up to `room` of them. Returns how many; `from` then is where to go on.
using FindBusyFn = std::size_t(const ClassifyPlanes& planes, std::size_t& from, std::size_t end,
                               BusyBlock* found, std::size_t room);

// Writes what became of the busy pixels of the block at `begin` into fgMask, absorbMask and fgLife.
// `matched`: those of `compared` that found enough samples. No pixel from `end` on is touched.
using SettleBlockFn = void(const ClassifyPlanes& planes, std::size_t begin, std::size_t end,
                           const BusyPixels& busy, std::uint32_t matched);

// ---- matching
// -----------------------------------------------------------------------------------------------

inline constexpr std::uint32_t nothingMatched = 999;

// How pixels are compared with their samples (samplesPerPixel slots of 4 bytes). The distance is the sum of
// the absolute differences of the first three bytes (of the first one, with one channel); a sample matches
// when none of them is above `radius`. Slots are walked in order until `needed` have matched. With one
// channel the count is tested after every slot, matched or not; with more, only after a match.
struct MatchRule {
  std::int32_t channels;  // 1, 3 or 4
  std::int32_t radius;
  std::int32_t needed;
};

// Compares the pixels of a block that are in `wanted`: their bits in the result tell which found enough
// samples. minDist of each becomes the smallest distance of a sample that matched before the walk ended, or
// 999. `samples`, `values`, `minDist`: of the block's first pixel.
using MatchBlockFn = std::uint32_t(const MatchRule& rule, const std::uint8_t* samples,
                                   const std::uint8_t* values, std::uint32_t wanted, std::uint32_t* minDist);

// ---- update
// -------------------------------------------------------------------------------------------------

struct UpdatePlanes {
  const std::uint8_t* roiMask;
  const std::uint8_t* rdDiff;
  const std::uint8_t* prevFgMask;
  const std::uint8_t* fgMask;
  const std::uint8_t* absorbMask;
  const std::uint8_t* illumDiff;  // read only when `watchLight`
  std::int32_t* updTimer;
  std::int32_t unchanged;
  std::int32_t sameLight;
  bool absorbing;
  bool watchLight;
};

// The pixels of a block that may have to be written into their models.
struct UpdateWork {
  std::uint32_t absorbed;  // inside, absorbMask 255, while `absorbing`
  std::uint32_t
      lit;  // other background pixels inside whose illumDiff is above `sameLight`, while `watchLight`
  std::uint32_t
      changed;  // other background pixels inside that were foreground or changed by more than `unchanged`

  bool any() const { return (absorbed | lit | changed) != 0; }
};

struct UpdateBlock {
  std::size_t begin;
  UpdateWork work;
};

// Takes one from updTimer (wrapping) at every pixel inside the regions below `end`, block by block from
// `from` on, and lists the blocks with any work in `found`, up to `room` of them. Returns how many; `from`
// then is where to go on. Adds to `examined` the number of background pixels inside that are not absorbed,
// while `watchLight`.
using FindUpdateWorkFn = std::size_t(const UpdatePlanes& planes, std::size_t& from, std::size_t end,
                                     UpdateBlock* found, std::size_t room, std::int64_t& examined);

// ---- versions
// -----------------------------------------------------------------------------------------------

TakeFrameFn takeFrame_c, takeFrame_avx2;
FindBusyFn findBusy_c, findBusy_avx2;
SettleBlockFn settleBlock_c, settleBlock_avx2;
MatchBlockFn matchBlock_c, matchBlock_avx2;
FindUpdateWorkFn findUpdateWork_c, findUpdateWork_avx2;

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
