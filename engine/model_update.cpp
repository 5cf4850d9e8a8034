// Replacing samples: at once for absorbed pixels and lighting changes, once in 16 frames for slowly changing
// background.
#include <cassert>
#include <cstring>

#include "base/integers.h"
#include "engine/engine_state.h"
#include "engine/kamble.h"
#include "engine/neighbours.h"
#include "engine/refresh.h"
#include "engine/rules.h"

namespace {

void writeSample(kAMBLE& engine, std::size_t pixel) {
  const auto bytes = static_cast<std::size_t>(engine.frmChn);
  const std::uint8_t* value = engine.curFrame + pixel * bytes;
  const std::uint32_t slot = engine.sampleCursor[pixel];
  assert(slot < BgModel::numSamples);
  engine.sampleCursor[pixel] =
      lm::nextSlot(slot, engine.lockSegStart, engine.lockSegEnd, BgModel::numSamples);
  std::memcpy(engine.bgModel[pixel].samples[slot], value, bytes);
  std::memcpy(engine.bgImg + pixel * bytes, value, bytes);
}

bool isLit(const kAMBLE& engine, std::size_t pixel) { return engine.illumDiff[pixel] > engine.thrIllum; }

// Whether the light of a pixel changed together with that of its next neighbour, or over much of the scene.
bool followsLight(kAMBLE& engine, std::size_t pixel, lm::LightCount& light) {
  ++light.examined;
  if (!isLit(engine, pixel)) return false;
  ++light.changed;
  return lm::isGlobalChange(engine.illumRatio) || isLit(engine, lm::takeNeighbour(engine, pixel));
}

// Whether it is this pixel's turn for the slow refresh.
bool isRefreshDue(kAMBLE& engine, std::size_t pixel) {
  if (engine.rdDiff[pixel] <= engine.thrHeuris && engine.prevFgMask[pixel] == 0) return false;
  if (engine.updTimer[pixel] > 0) return false;
  engine.updTimer[pixel] = 0;
  if (std::int64_t{engine.minDist[pixel]} <= std::int64_t{engine.thrMatch}) return false;
  const std::uint32_t turn = engine.refreshCount[pixel];
  engine.refreshCount[pixel] = turn + 1 == lm::refreshCycle ? 0 : turn + 1;
  return turn == lm::refreshTurn;
}

void updatePixel(kAMBLE& engine, std::size_t pixel, lm::LightCount& light) {
  if (engine.roiMask[pixel] == 0) return;
  engine.updTimer[pixel] = lm::wrapSub(engine.updTimer[pixel], 1);
  if (engine.ghostSuppression && engine.absorbMask[pixel] == 255) {
    writeSample(engine, pixel);
    engine.absorbMask[pixel] = 0;
    return;
  }
  if (engine.fgMask[pixel] != 0) return;
  if (engine.illumChange && followsLight(engine, pixel, light)) {
    writeSample(engine, pixel);
    return;
  }
  if (isRefreshDue(engine, pixel)) {
    writeSample(engine, pixel);
    engine.updTimer[pixel] = lm::refreshRest;
  }
}

// Whether the planes that the update needs exist.
bool canUpdate(const kAMBLE& engine) {
  return engine.roiMask != nullptr && engine.fgMask != nullptr && engine.prevFgMask != nullptr &&
         engine.rdDiff != nullptr && engine.curFrame != nullptr && engine.absorbMask != nullptr &&
         engine.minDist != nullptr && engine.bgImg != nullptr && engine.updTimer != nullptr &&
         engine.refreshCount != nullptr && engine.sampleCursor != nullptr && engine.nbrCursor != nullptr &&
         (!engine.illumChange || engine.illumDiff != nullptr) &&
         engine.nbrIdx.size() == engine.bgModel.size() && lm::hasModel(engine) && lm::holdsFrames(engine);
}

}  // namespace

bool kAMBLE::updateModel_ncv() {
  if (!canUpdate(*this)) return false;
  lm::LightCount light;
  const std::size_t count = lm::countOf(numPixel);
  for (std::size_t pixel = 0; pixel < count; ++pixel) updatePixel(*this, pixel, light);
  illumRatio = light.ratio();
  return true;
}
