// The differences that the model reads: frame to frame, and background to frame, on one channel.
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
  int channel = lm::noDifference;
  if (prevFrame != nullptr) {
    channel = takeChannel(*this);
    lm::makeOnce(rdDiff, numPixel);
    if (illumChange) lm::makeOnce(illumDiff, lm::wrapMul(framePixels, frmChn));
  } else {
    lm::makeOnce(rdDiff, numPixel, 255);
  }
  if (prevFgMask == nullptr) {
    lm::makeOnce(prevFgMask, framePixels, 1);
    lm::makeOnce(fgMask, framePixels);
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
  const int channel = prepareDifferences();
  lm::takeRange(*this, nullptr, channel, 0, lm::countOf(lm::wrapMul(szImgX, szImgY)));
  return skipFrame;
}
