// Replacing samples: absorbed pixels and changes of light at once, slowly changing background now and then.
#include <cstring>

#include "engine/kamble.h"
#include "engine/rules.h"

namespace {

constexpr float globalChangeRatio =
    0.15F;  // share of changed background from which a change counts as global
constexpr std::uint32_t refreshCycle = 16;  // a qualifying pixel is refreshed once in so many frames
constexpr std::uint32_t refreshTurn = 1;    // position in the cycle at which it is
constexpr std::int32_t refreshRest = 15;    // frames that it then rests

// Background pixels seen in a frame, and those whose light changed. Floats, so they stop at 2^24.
struct LightCount {
  float examined = 0.0F;
  float changed = 0.0F;
};

void writeSample(kAMBLE& engine, std::size_t pixel) {
  const auto bytes = static_cast<std::size_t>(engine.frmChn);
  const std::uint8_t* value = engine.curFrame + pixel * bytes;
  const std::uint32_t slot = engine.sampleCursor[pixel];
  engine.sampleCursor[pixel] =
      lm::nextSlot(slot, engine.lockSegStart, engine.lockSegEnd, BgModel::numSamples);
  std::memcpy(engine.bgModel[pixel].samples[slot], value, bytes);
  std::memcpy(engine.bgImg + pixel * bytes, value, bytes);
}

bool lightChanged(const kAMBLE& engine, std::size_t pixel) {
  return engine.illumDiff[pixel] > engine.thrIllum;
}

// Whether a neighbour of the pixel, the next in turn, changed as well.
bool neighbourChanged(kAMBLE& engine, std::size_t pixel) {
  const std::uint32_t entry = engine.nbrCursor[pixel];
  engine.nbrCursor[pixel] = lm::nextInRing(entry, engine.numNbr);
  const int neighbour = engine.nbrIdx[pixel][entry];
  return lightChanged(engine, neighbour == -1 ? pixel : static_cast<std::size_t>(neighbour));
}

// Whether the pixel's light changed over much of the scene or together with a neighbour, not on its own.
bool followsLight(kAMBLE& engine, std::size_t pixel, LightCount& light) {
  light.examined += 1.0F;
  if (!lightChanged(engine, pixel)) return false;
  light.changed += 1.0F;
  return !(engine.illumRatio < globalChangeRatio) || neighbourChanged(engine, pixel);
}

// Whether it is this pixel's turn for the slow refresh.
bool isRefreshDue(kAMBLE& engine, std::size_t pixel) {
  if (engine.rdDiff[pixel] <= engine.thrHeuris && engine.prevFgMask[pixel] == 0) return false;
  if (engine.updTimer[pixel] > 0) return false;
  engine.updTimer[pixel] = 0;
  if (std::int64_t{engine.minDist[pixel]} <= std::int64_t{engine.thrMatch}) return false;
  const std::uint32_t turn = engine.refreshCount[pixel];
  engine.refreshCount[pixel] = turn + 1 == refreshCycle ? 0 : turn + 1;
  return turn == refreshTurn;
}

void updatePixel(kAMBLE& engine, std::size_t pixel, LightCount& light) {
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
    engine.updTimer[pixel] = refreshRest;
  }
}

// Reads illumDiff up to two rows and two columns away from the range.
void updateRange(kAMBLE& engine, std::size_t begin, std::size_t end, LightCount& light) {
  for (std::size_t pixel = begin; pixel < end; ++pixel) updatePixel(engine, pixel, light);
}

}  // namespace

bool kAMBLE::updateModel_ncv() {
  const std::size_t count = lm::countOf(numPixel);
  if (roiMask == nullptr || fgMask == nullptr || prevFgMask == nullptr || rdDiff == nullptr ||
      curFrame == nullptr || absorbMask == nullptr || minDist == nullptr || bgImg == nullptr ||
      updTimer == nullptr || refreshCount == nullptr || sampleCursor == nullptr || nbrCursor == nullptr ||
      (illumChange && illumDiff == nullptr) || bgModel.size() < count || nbrIdx.size() < count) {
    return false;
  }
  LightCount light;
  updateRange(*this, 0, count, light);
  illumRatio = light.examined > 0.0F ? light.changed / light.examined : 0.0F;
  return true;
}
