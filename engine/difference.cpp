// The differences that the model reads: frame to frame, and background to frame, on one channel.
#include <algorithm>

#include "base/aligned.h"
#include "base/integers.h"
#include "engine/engine_state.h"
#include "engine/kamble.h"
#include "engine/ranges.h"
#include "simd/model_kernels.h"

// The fourth channel is never compared: its turn uses channel 0 again, as does a counter that a host set
// below 0.
int lm::comparedChannel(const kAMBLE& engine) {
  return engine.diffChn >= 0 && engine.diffChn < 3 ? engine.diffChn : 0;
}

int lm::takeChannel(kAMBLE& engine) {
  const int channel = comparedChannel(engine);
  const std::int32_t next = wrapAdd(engine.diffChn, 1);
  engine.diffChn = next < engine.frmChn ? next : 0;
  return channel;
}

int lm::prepareDifferences(kAMBLE& engine) {
  engine.skipFrame = false;
  const std::int32_t framePixels = wrapMul(engine.szImgX, engine.szImgY);
  // Planes are made for all pixels of the model, whatever size was configured since.
  const std::int32_t pixels = std::max(engine.numPixel, framePixels);
  int channel = noDifference;
  if (engine.prevFrame != nullptr) {
    channel = takeChannel(engine);
    makeOnce(engine.rdDiff, engine.numPixel);
    if (engine.illumChange) makeOnce(engine.illumDiff, wrapMul(pixels, engine.frmChn));
  } else {
    makeOnce(engine.rdDiff, engine.numPixel, 255);
  }
  if (engine.prevFgMask == nullptr) {
    makeOnce(engine.prevFgMask, pixels, 1);
    makeOnce(engine.fgMask, pixels);
  }
  return channel;
}

void lm::takeRange(kAMBLE& engine, const std::uint8_t* frame, int channel, std::size_t begin,
                   std::size_t end) {
  if (engine.curFrame == nullptr) return;
  const bool differs = channel != noDifference;
  const bool lit = differs && engine.illumChange && engine.bgImg != nullptr;
  const bool keep = frame != nullptr && engine.prevFrame != nullptr;
  const FramePlanes planes{.frame = frame,
                           .curFrame = engine.curFrame,
                           .prevFrame = engine.prevFrame,
                           .bgImg = engine.bgImg,
                           .rdDiff = differs ? engine.rdDiff : nullptr,
                           .illumDiff = lit ? engine.illumDiff : nullptr,
                           .channels = engine.frmChn,
                           .channel = channel,
                           .keep = keep};
  modelKernels().takeFrame(planes, begin, end);
}

bool kAMBLE::heuristic_ncv() {
  skipFrame = false;
  const std::int32_t framePixels = lm::wrapMul(szImgX, szImgY);
  // There are no planes for what was configured, or refused, since the engine was sized.
  const bool fits = framePixels <= numPixel && (prevFrame == nullptr || lm::holdsFrames(*this));
  if (!lm::hasModel(*this) || !fits) return false;
  const int channel = lm::prepareDifferences(*this);
  lm::takeRange(*this, nullptr, channel, 0, lm::countOf(framePixels));
  return skipFrame;
}
