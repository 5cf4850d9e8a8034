// The differences that the model reads: frame to frame, and background to frame, on one channel.
#include "engine/aligned.h"
#include "engine/kamble.h"
#include "engine/rules.h"
#include "simd/simd.h"

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

bool kAMBLE::heuristic_ncv() {
  skipFrame = false;
  const std::int32_t framePixels = lm::wrapMul(szImgX, szImgY);
  if (prevFrame != nullptr) {
    const int channel = takeChannel(*this);
    if (lm::makeOnce(rdDiff, numPixel) && curFrame != nullptr) {
      simd::genRdDiff(prevFrame, curFrame, rdDiff, szImgX, szImgY, frmChn, channel);
    }
    if (illumChange && lm::makeOnce(illumDiff, lm::wrapMul(framePixels, frmChn)) && bgImg != nullptr &&
        curFrame != nullptr) {
      simd::genRdDiff(bgImg, curFrame, illumDiff, szImgX, szImgY, frmChn, channel);
    }
  } else {
    lm::makeOnce(rdDiff, numPixel, 255);
  }
  if (prevFgMask == nullptr) {
    lm::makeOnce(prevFgMask, framePixels, 1);
    lm::makeOnce(fgMask, framePixels);
  }
  return skipFrame;
}
