// Deciding for every pixel whether it is background or foreground, and keeping count of how long foreground
// has stayed still.
#include <array>
#include <bit>

#include "engine/bits.h"
#include "engine/fetch.h"
#include "engine/kamble.h"
#include "engine/ranges.h"
#include "engine/rules.h"
#include "simd/model_kernels.h"

namespace {

// Asks for the samples that classifyBlock reads. Where most pixels are compared they are read in one go,
// which the processor sees by itself.
void fetchSamples(const kAMBLE& engine, const lm::BusyBlock& block) {
  if (std::popcount(block.pixels.compared) > static_cast<int>(lm::blockPixels / 2)) return;
  constexpr std::size_t line = 64;  // bytes that come from memory at once; a pixel's samples lie in two
  lm::forEachBit(block.pixels.compared, [&](std::size_t k) {
    const std::uint8_t* samples = engine.bgModel[block.begin + k].samples[0];
    lm::fetch(samples);
    lm::fetch(samples + line);
  });
}

void classifyBlock(const kAMBLE& engine, const std::uint8_t* frame, const lm::ClassifyPlanes& planes,
                   const lm::BusyBlock& block, std::size_t end) {
  const lm::ModelKernels& kernels = lm::modelKernels();
  std::uint32_t matched = 0;
  if (block.pixels.compared != 0) {
    const lm::MatchRule rule{engine.frmChn, engine.thrMatch, engine.minMatchNum};
    const std::uint8_t* values = frame + block.begin * static_cast<std::size_t>(engine.frmChn);
    matched = kernels.matchBlock(rule, engine.bgModel[block.begin].samples[0], values, block.pixels.compared,
                                 engine.minDist + block.begin);
  }
  kernels.settleBlock(planes, block.begin, end, block.pixels, matched);
}

lm::ClassifyPlanes planesOf(const kAMBLE& engine) {
  const lm::LifeRule life{static_cast<float>(engine.lifeStaticFrm), lm::absorbedLife(engine.lifeStaticFrm),
                          THRESH_SAME_PIXEL_x2, THRESH_SAME_PIXEL_x3};
  return {engine.roiMask, engine.rdDiff,    engine.prevFgMask,       engine.fgMask, engine.absorbMask,
          engine.fgLife,  engine.thrHeuris, engine.ghostSuppression, life};
}

}  // namespace

void lm::classifyRange(kAMBLE& engine, const std::uint8_t* frame, std::size_t begin, std::size_t end) {
  const ClassifyPlanes planes = planesOf(engine);
  std::array<BusyBlock, 16> blocks;
  while (begin < end) {
    const std::size_t found = modelKernels().findBusy(planes, begin, end, blocks.data(), blocks.size());
    for (std::size_t i = 0; i < found; ++i) fetchSamples(engine, blocks[i]);
    for (std::size_t i = 0; i < found; ++i) classifyBlock(engine, frame, planes, blocks[i], end);
  }
}

bool kAMBLE::canClassify() const {
  return roiMask != nullptr && fgMask != nullptr && prevFgMask != nullptr && rdDiff != nullptr &&
         curFrame != nullptr && absorbMask != nullptr && fgLife != nullptr && minDist != nullptr &&
         hasModel() && holdsFrames();
}

bool kAMBLE::recogFg_ncv() {
  if (!canClassify()) return false;
  lm::classifyRange(*this, curFrame, 0, lm::countOf(numPixel));
  return true;
}
