// Deciding for every pixel whether it is background or foreground, and keeping count of how long foreground
// has stayed still.
#include <array>
#include <bit>
#include <cassert>

#include "base/bits.h"
#include "base/integers.h"
#include "base/prefetch.h"
#include "engine/engine_state.h"
#include "engine/kamble.h"
#include "engine/ranges.h"
#include "engine/rules.h"
#include "simd/model_kernels.h"

namespace {

// Prefetches the samples that classifyBlock reads. Where most pixels are compared the reads are sequential
// and the hardware prefetcher covers them.
void prefetchSamples(const kAMBLE& engine, const lm::BusyBlock& block) {
  if (std::popcount(block.pixels.compared) > static_cast<int>(lm::blockPixels / 2)) return;
  constexpr std::size_t line = 64;  // bytes of a cache line; a pixel's samples are in two
  lm::forEachBit(block.pixels.compared, [&](std::size_t k) {
    const std::uint8_t* samples = engine.bgModel[block.begin + k].samples[0];
    lm::prefetch(samples);
    lm::prefetch(samples + line);
  });
}

void classifyBlock(const kAMBLE& engine, const std::uint8_t* frame, const lm::ClassifyPlanes& planes,
                   const lm::BusyBlock& block, std::size_t end) {
  assert(block.begin < end && lm::fitsIn(block.pixels.compared, end - block.begin));
  const lm::ModelKernels& kernels = lm::modelKernels();
  std::uint32_t matched = 0;
  if (block.pixels.compared != 0) {
    const lm::MatchRule rule{
        .channels = engine.frmChn, .radius = engine.thrMatch, .needed = engine.minMatchNum};
    const std::uint8_t* values = frame + block.begin * static_cast<std::size_t>(engine.frmChn);
    matched = kernels.matchBlock(rule, engine.bgModel[block.begin].samples[0], values, block.pixels.compared,
                                 engine.minDist + block.begin);
  }
  kernels.settleBlock(planes, block.begin, end, block.pixels, matched);
}

lm::ClassifyPlanes planesOf(const kAMBLE& engine) {
  return {.roiMask = engine.roiMask,
          .rdDiff = engine.rdDiff,
          .prevFgMask = engine.prevFgMask,
          .fgMask = engine.fgMask,
          .absorbMask = engine.absorbMask,
          .fgLife = engine.fgLife,
          .unchanged = engine.thrHeuris,
          .accountLife = engine.ghostSuppression,
          .life = lm::lifeRule(engine)};
}

}  // namespace

lm::LifeRule lm::lifeRule(const kAMBLE& engine) {
  return {.limit = static_cast<float>(engine.lifeStaticFrm),
          .absorbed = absorbedLife(engine.lifeStaticFrm),
          .band2 = THRESH_SAME_PIXEL_x2,
          .band3 = THRESH_SAME_PIXEL_x3};
}

void lm::classifyRange(kAMBLE& engine, const std::uint8_t* frame, std::size_t begin, std::size_t end) {
  assert(begin <= end && end <= engine.bgModel.size());
  const ClassifyPlanes planes = planesOf(engine);
  std::array<BusyBlock, 16> blocks;
  while (begin < end) {
    const std::size_t found = modelKernels().findBusy(planes, begin, end, blocks.data(), blocks.size());
    assert(found <= blocks.size());
    for (std::size_t i = 0; i < found; ++i) prefetchSamples(engine, blocks[i]);
    for (std::size_t i = 0; i < found; ++i) classifyBlock(engine, frame, planes, blocks[i], end);
  }
}

bool lm::canClassify(const kAMBLE& engine) {
  return engine.roiMask != nullptr && engine.fgMask != nullptr && engine.prevFgMask != nullptr &&
         engine.rdDiff != nullptr && engine.curFrame != nullptr && engine.absorbMask != nullptr &&
         engine.fgLife != nullptr && engine.minDist != nullptr && lm::hasModel(engine) &&
         lm::holdsFrames(engine);
}

bool kAMBLE::recogFg_ncv() {
  if (!lm::canClassify(*this)) return false;
  lm::classifyRange(*this, curFrame, 0, lm::countOf(numPixel));
  return true;
}
