// The kernels of the background model: what the per-pixel rules of engine/ need in bulk, so that whole blocks
// without anything to do are passed over and samples are compared eight at a time. Not exported.
//
// Each has a plain version, which defines it, and an AVX2 version; modelKernels() picks once, by level.
// Blocks are 32 pixels (fewer at the end of a range); bit k of a mask is pixel k of the block. Kernels check
// nothing; planes need no alignment.
#pragma once

#include <cstddef>
#include <cstdint>

namespace lm {

inline constexpr std::size_t blockPixels = 32;

// ---- classification
// -----------------------------------------------------------------------------------------

// What decides whether a pixel needs a look this frame. A pixel is idle when it lies outside the regions and
// is 0 in fgMask; or when it was background, changed by at most `unchanged`, and has no life to account for:
// `accountLife` is off, or fgMask is 0, absorbMask is not 255 and its life is below 1.
struct ClassifyPlanes {
  const std::uint8_t* roiMask;
  const std::uint8_t* rdDiff;
  const std::uint8_t* prevFgMask;
  const std::uint8_t* fgMask;
  const std::uint8_t* absorbMask;
  const float* fgLife;
  std::int32_t unchanged;
  bool accountLife;
};

// Begin of the first block, of those that start at `from`, from + 32, ..., with a pixel below `end` that is
// not idle; `end` when there is none. `busy`: its pixels that are not idle.
using NextBusyBlockFn = std::size_t(const ClassifyPlanes& planes, std::size_t from, std::size_t end,
                                    std::uint32_t& busy);

// ---- matching
// -----------------------------------------------------------------------------------------------

inline constexpr std::size_t samplesPerPixel = 20;
inline constexpr std::uint32_t nothingMatched = 999;

// How pixels are compared with their samples (20 slots of 4 bytes). The distance is the sum of the absolute
// differences of the first three bytes (of the first one, with one channel); a sample matches when none of
// them is above `radius`. Slots are walked in order until `needed` have matched. With one channel the count
// is tested after every slot, matched or not; with more, only after a match.
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
};

// Takes one from updTimer (wrapping) at every pixel inside the regions, block by block from `from`, up to and
// including the first block with any work; returns its begin, or `end` when there is none. Adds to `examined`
// the number of background pixels inside that are not absorbed, while `watchLight`.
using NextUpdateBlockFn = std::size_t(const UpdatePlanes& planes, std::size_t from, std::size_t end,
                                      UpdateWork& work, std::int64_t& examined);

// ---- versions
// -----------------------------------------------------------------------------------------------

NextBusyBlockFn nextBusyBlock_c, nextBusyBlock_avx2;
MatchBlockFn matchBlock_c, matchBlock_avx2;
NextUpdateBlockFn nextUpdateBlock_c, nextUpdateBlock_avx2;

struct ModelKernels {
  NextBusyBlockFn* nextBusyBlock;
  MatchBlockFn* matchBlock;
  NextUpdateBlockFn* nextUpdateBlock;
};

// The versions for a processor of `level`. Pure.
ModelKernels modelKernelsFor(int level);

// The versions for this processor; chosen on the first call.
const ModelKernels& modelKernels();

}  // namespace lm
