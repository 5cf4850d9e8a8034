// Replacing samples: absorbed pixels and changes of light at once, slowly changing background now and then.
#include <algorithm>
#include <bit>
#include <cstring>

#include "engine/bits.h"
#include "engine/kamble.h"
#include "engine/ranges.h"
#include "engine/rules.h"
#include "simd/model_kernels.h"

namespace {

constexpr float globalChangeRatio =
    0.15F;  // share of changed background from which a change counts as global
constexpr std::uint32_t refreshCycle = 16;  // a qualifying pixel is refreshed once in so many frames
constexpr std::uint32_t refreshTurn = 1;    // position in the cycle at which it is
constexpr std::int32_t refreshRest = 15;    // frames that it then rests

void writeSample(kAMBLE& engine, std::size_t pixel) {
  const auto bytes = static_cast<std::size_t>(engine.frmChn);
  const std::uint8_t* value = engine.curFrame + pixel * bytes;
  const std::uint32_t slot = engine.sampleCursor[pixel];
  engine.sampleCursor[pixel] =
      lm::nextSlot(slot, engine.lockSegStart, engine.lockSegEnd, BgModel::numSamples);
  std::memcpy(engine.bgModel[pixel].samples[slot], value, bytes);
  std::memcpy(engine.bgImg + pixel * bytes, value, bytes);
}

// Whether the light of a neighbour of the pixel, the next in turn, changed as well.
bool neighbourChanged(kAMBLE& engine, std::size_t pixel) {
  const std::uint32_t entry = engine.nbrCursor[pixel];
  engine.nbrCursor[pixel] = lm::nextInRing(entry, engine.numNbr);
  const int neighbour = engine.nbrIdx[pixel][entry];
  return engine.illumDiff[neighbour == -1 ? pixel : static_cast<std::size_t>(neighbour)] > engine.thrIllum;
}

// Whether it is this pixel's turn for the slow refresh. The pixel was foreground or has changed.
bool isRefreshDue(kAMBLE& engine, std::size_t pixel) {
  if (engine.updTimer[pixel] > 0) return false;
  engine.updTimer[pixel] = 0;
  if (std::int64_t{engine.minDist[pixel]} <= std::int64_t{engine.thrMatch}) return false;
  const std::uint32_t turn = engine.refreshCount[pixel];
  engine.refreshCount[pixel] = turn + 1 == refreshCycle ? 0 : turn + 1;
  return turn == refreshTurn;
}

// The block's pixels that may have to be written into their models.
void updateBlock(kAMBLE& engine, std::size_t begin, const lm::UpdateWork& work) {
  lm::forEachBit(work.absorbed, [&](std::size_t k) {
    writeSample(engine, begin + k);
    engine.absorbMask[begin + k] = 0;
  });
  // A change of light over much of the scene is followed at once; elsewhere only together with a neighbour.
  const bool everywhere = !(engine.illumRatio < globalChangeRatio);
  std::uint32_t followed = 0;
  lm::forEachBit(work.lit, [&](std::size_t k) {
    if (!everywhere && !neighbourChanged(engine, begin + k)) return;
    writeSample(engine, begin + k);
    followed |= 1U << k;
  });
  lm::forEachBit(work.changed & ~followed, [&](std::size_t k) {
    if (!isRefreshDue(engine, begin + k)) return;
    writeSample(engine, begin + k);
    engine.updTimer[begin + k] = refreshRest;
  });
}

}  // namespace

float lm::LightCount::ratio() const {
  constexpr std::int64_t limit = 1 << 24;
  if (examined == 0) return 0.0F;
  return static_cast<float>(std::min(changed, limit)) / static_cast<float>(std::min(examined, limit));
}

void lm::updateRange(kAMBLE& engine, std::size_t begin, std::size_t end, LightCount& light) {
  const ModelKernels& kernels = modelKernels();
  const UpdatePlanes planes{engine.roiMask,    engine.rdDiff,           engine.prevFgMask, engine.fgMask,
                            engine.absorbMask, engine.illumDiff,        engine.updTimer,   engine.thrHeuris,
                            engine.thrIllum,   engine.ghostSuppression, engine.illumChange};
  UpdateWork work{};
  for (std::size_t at = kernels.nextUpdateBlock(planes, begin, end, work, light.examined); at < end;
       at = kernels.nextUpdateBlock(planes, at + blockPixels, end, work, light.examined)) {
    light.changed += std::popcount(work.lit);
    updateBlock(engine, at, work);
  }
}

bool kAMBLE::canUpdate() const {
  const std::size_t count = lm::countOf(numPixel);
  return roiMask != nullptr && fgMask != nullptr && prevFgMask != nullptr && rdDiff != nullptr &&
         curFrame != nullptr && absorbMask != nullptr && minDist != nullptr && bgImg != nullptr &&
         updTimer != nullptr && refreshCount != nullptr && sampleCursor != nullptr && nbrCursor != nullptr &&
         (!illumChange || illumDiff != nullptr) && bgModel.size() >= count && nbrIdx.size() >= count;
}

bool kAMBLE::updateModel_ncv() {
  if (!canUpdate()) return false;
  lm::LightCount light;
  lm::updateRange(*this, 0, lm::countOf(numPixel), light);
  illumRatio = light.ratio();
  return true;
}
