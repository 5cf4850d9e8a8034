// Deciding for every pixel whether it is background or foreground, and keeping count of how long foreground
// has stayed still.
#include <algorithm>

#include "base/integers.h"
#include "engine/engine_state.h"
#include "engine/kamble.h"
#include "engine/life.h"
#include "engine/rules.h"
#include "simd/simd.h"

namespace {

constexpr std::uint8_t foreground = 255;
constexpr std::uint8_t background = 0;
constexpr std::uint32_t nothingMatched = 999;

// Match distance of a pixel and a sample, or -1.
int matchDistance(const std::uint8_t* pixel, const std::uint8_t* sample, int channels, int radius) {
  if (channels == 3) return simd::isMatchVal_bgr24(pixel, sample, radius);
  if (channels == 4) return simd::isMatchVal_bgr32(pixel, sample, radius);
  const int distance = *pixel > *sample ? *pixel - *sample : *sample - *pixel;
  return distance <= radius ? distance : -1;
}

// Compares the pixel with its samples in slot order until enough match; minDist becomes the smallest distance
// until then. With one channel the count is tested after every slot, so that a pixel that needs no match is
// background at once; with more, only after a match.
bool isBackground(kAMBLE& engine, std::size_t pixel) {
  const int channels = engine.frmChn;
  const std::uint8_t* value = engine.curFrame + pixel * static_cast<std::size_t>(channels);
  std::uint32_t nearest = nothingMatched;
  int matches = 0;
  bool enough = false;
  for (const auto& sample : engine.bgModel[pixel].samples) {
    const int distance = matchDistance(value, sample, channels, engine.thrMatch);
    const bool matched = distance != -1;
    if (matched) {
      nearest = std::min(nearest, static_cast<std::uint32_t>(distance));
      ++matches;
    }
    enough = (matched || channels == 1) && matches >= engine.minMatchNum;
    if (enough) break;
  }
  engine.minDist[pixel] = nearest;
  return enough;
}

bool isUnchangedBackground(const kAMBLE& engine, std::size_t pixel) {
  return engine.rdDiff[pixel] <= engine.thrHeuris && engine.prevFgMask[pixel] == background;
}

void accountLife(kAMBLE& engine, std::size_t pixel) {
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

void classifyPixel(kAMBLE& engine, std::size_t pixel) {
  if (engine.roiMask[pixel] == 0) {
    engine.fgMask[pixel] = background;
    return;
  }
  // Unchanged background keeps the value that fgMask holds.
  if (!isUnchangedBackground(engine, pixel)) {
    if (engine.ghostSuppression && engine.fgLife[pixel] > static_cast<float>(engine.lifeStaticFrm)) {
      absorb(engine, pixel);
      return;
    }
    engine.fgMask[pixel] = isBackground(engine, pixel) ? background : foreground;
  }
  if (engine.ghostSuppression) accountLife(engine, pixel);
}

// Whether the planes that classification needs exist.
bool canClassify(const kAMBLE& engine) {
  return engine.roiMask != nullptr && engine.fgMask != nullptr && engine.prevFgMask != nullptr &&
         engine.rdDiff != nullptr && engine.curFrame != nullptr && engine.absorbMask != nullptr &&
         engine.fgLife != nullptr && engine.minDist != nullptr && lm::hasModel(engine) &&
         lm::holdsFrames(engine);
}

}  // namespace

bool kAMBLE::recogFg_ncv() {
  if (!canClassify(*this)) return false;
  const std::size_t count = lm::countOf(numPixel);
  for (std::size_t pixel = 0; pixel < count; ++pixel) classifyPixel(*this, pixel);
  return true;
}
