// Deciding for every pixel whether it is background or foreground, and keeping count of how long foreground
// has stayed still.
#include "engine/bits.h"
#include "engine/kamble.h"
#include "engine/ranges.h"
#include "engine/rules.h"
#include "simd/model_kernels.h"

namespace {

constexpr std::uint8_t foreground = 255;
constexpr std::uint8_t background = 0;

bool isUnchangedBackground(const kAMBLE& engine, std::size_t pixel) {
  return engine.rdDiff[pixel] <= engine.thrHeuris && engine.prevFgMask[pixel] == background;
}

void keepLife(kAMBLE& engine, std::size_t pixel) {
  float& life = engine.fgLife[pixel];
  if (engine.fgMask[pixel] == foreground) {
    life = lm::gainLife(life, engine.rdDiff[pixel], THRESH_SAME_PIXEL_x2, THRESH_SAME_PIXEL_x3);
  } else if (engine.absorbMask[pixel] == 255) {
    life = lm::absorbedLife(engine.lifeStaticFrm);
  } else {
    life = lm::decayLife(life);
  }
}

void absorb(kAMBLE& engine, std::size_t pixel) {
  engine.fgMask[pixel] = background;
  engine.absorbMask[pixel] = 255;
  engine.fgLife[pixel] = lm::absorbedLife(engine.lifeStaticFrm);
}

// What becomes of a pixel before any is compared with its samples.
enum class Verdict { settled, unchanged, compare };

Verdict judge(kAMBLE& engine, std::size_t pixel) {
  if (engine.roiMask[pixel] == 0) {
    engine.fgMask[pixel] = background;
    return Verdict::settled;
  }
  if (isUnchangedBackground(engine, pixel)) return Verdict::unchanged;
  if (engine.ghostSuppression && engine.fgLife[pixel] > static_cast<float>(engine.lifeStaticFrm)) {
    absorb(engine, pixel);
    return Verdict::settled;
  }
  return Verdict::compare;
}

// The pixels `busy` of the block at `begin`; the block's other pixels stay as they are.
void classifyBlock(kAMBLE& engine, const lm::ModelKernels& kernels, std::size_t begin, std::uint32_t busy) {
  std::uint32_t compare = 0;
  std::uint32_t unchanged = 0;
  lm::forEachBit(busy, [&](std::size_t k) {
    const Verdict verdict = judge(engine, begin + k);
    compare |= static_cast<std::uint32_t>(verdict == Verdict::compare) << k;
    unchanged |= static_cast<std::uint32_t>(verdict == Verdict::unchanged) << k;
  });
  if (compare != 0) {
    const lm::MatchRule rule{engine.frmChn, engine.thrMatch, engine.minMatchNum};
    const std::uint8_t* values = engine.curFrame + begin * static_cast<std::size_t>(engine.frmChn);
    const std::uint32_t matched =
        kernels.matchBlock(rule, engine.bgModel[begin].samples[0], values, compare, engine.minDist + begin);
    lm::forEachBit(compare, [&](std::size_t k) {
      engine.fgMask[begin + k] = (matched >> k & 1U) != 0 ? background : foreground;
    });
  }
  if (engine.ghostSuppression) {
    lm::forEachBit(compare | unchanged, [&](std::size_t k) { keepLife(engine, begin + k); });
  }
}

}  // namespace

void lm::classifyRange(kAMBLE& engine, std::size_t begin, std::size_t end) {
  const ModelKernels& kernels = modelKernels();
  const ClassifyPlanes planes{engine.roiMask,    engine.rdDiff, engine.prevFgMask, engine.fgMask,
                              engine.absorbMask, engine.fgLife, engine.thrHeuris,  engine.ghostSuppression};
  std::uint32_t busy = 0;
  for (std::size_t at = kernels.nextBusyBlock(planes, begin, end, busy); at < end;
       at = kernels.nextBusyBlock(planes, at + blockPixels, end, busy)) {
    classifyBlock(engine, kernels, at, busy);
  }
}

bool kAMBLE::canClassify() const {
  return roiMask != nullptr && fgMask != nullptr && prevFgMask != nullptr && rdDiff != nullptr &&
         curFrame != nullptr && absorbMask != nullptr && fgLife != nullptr && minDist != nullptr &&
         bgModel.size() >= lm::countOf(numPixel);
}

bool kAMBLE::recogFg_ncv() {
  if (!canClassify()) return false;
  lm::classifyRange(*this, 0, lm::countOf(numPixel));
  return true;
}
