// The differences that the model reads: frame to frame, and background to frame, on one channel.
#include <algorithm>

#include "engine/aligned.h"
#include "engine/kamble.h"
#include "engine/ranges.h"
#include "engine/rules.h"
#include "simd/model_kernels.h"

namespace {

// Channel of this frame's differences; moves the counter on. The fourth channel is never compared: its turn
// uses channel 0 again.
int takeChannel(kAMBLE& engine) {
  const int channel = engine.diffChn < 3 ? engine.diffChn : 0;
  const std::int32_t next = lm::wrapAdd(engine.diffChn, 1);
  engine.diffChn = next < engine.frmChn ? next : 0;
  return channel;
}

}  // namespace

int kAMBLE::prepareDifferences() {
  skipFrame = false;
  const std::int32_t framePixels = lm::wrapMul(szImgX, szImgY);
  // Planes are made for all pixels of the model, whatever size was configured since.
  const std::int32_t pixels = std::max(numPixel, framePixels);
  int channel = lm::noDifference;
  if (prevFrame != nullptr) {
    channel = takeChannel(*this);
    lm::makeOnce(rdDiff, numPixel);
    if (illumChange) lm::makeOnce(illumDiff, lm::wrapMul(pixels, frmChn));
  } else {
    lm::makeOnce(rdDiff, numPixel, 255);
  }
  if (prevFgMask == nullptr) {
    lm::makeOnce(prevFgMask, pixels, 1);
    lm::makeOnce(fgMask, pixels);
  }
  return channel;
}

void lm::takeRange(kAMBLE& engine, const std::uint8_t* frame, int channel, std::size_t begin,
                   std::size_t end) {
  if (engine.curFrame == nullptr) return;
  const bool differs = channel != noDifference;
  const bool lit = differs && engine.illumChange && engine.bgImg != nullptr;
  const bool keep = frame != nullptr && engine.prevFrame != nullptr;
  modelKernels().takeFrame(
      {frame, engine.curFrame, engine.prevFrame, engine.bgImg, differs ? engine.rdDiff : nullptr,
       lit ? engine.illumDiff : nullptr, engine.frmChn, channel, keep},
      begin, end);
}

bool kAMBLE::heuristic_ncv() {
  skipFrame = false;
  const std::int32_t framePixels = lm::wrapMul(szImgX, szImgY);
  // There are no planes for what was configured, or refused, since the engine was sized.
  const bool fits = framePixels <= numPixel && (prevFrame == nullptr || holdsFrames());
  if (!hasModel() || !fits) return false;
  const int channel = prepareDifferences();
  lm::takeRange(*this, nullptr, channel, 0, lm::countOf(framePixels));
  return skipFrame;
}
