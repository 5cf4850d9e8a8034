// The differences that the model reads: frame to frame, and background to frame, on one channel.
#include <algorithm>

#include "base/aligned.h"
#include "base/integers.h"
#include "engine/engine_state.h"
#include "engine/kamble.h"
#include "engine/rules.h"
#include "simd/simd.h"

bool kAMBLE::heuristic_ncv() {
  skipFrame = false;
  const std::int32_t framePixels = lm::wrapMul(szImgX, szImgY);
  // There are no planes for what was configured, or refused, since the engine was sized.
  const bool fits = framePixels <= numPixel && (prevFrame == nullptr || lm::holdsFrames(*this));
  if (!lm::hasModel(*this) || !fits) return false;
  const std::int32_t compared = std::max(framePixels, 0);

  // Planes are made for all pixels of the model, whatever size was configured since.
  if (prevFrame != nullptr) {
    const int channel = lm::comparedChannel(diffChn);
    diffChn = lm::nextChannel(diffChn, frmChn);
    if (lm::makeOnce(rdDiff, numPixel) && curFrame != nullptr) {
      simd::genRdDiff(prevFrame, curFrame, rdDiff, compared, 1, frmChn, channel);
    }
    if (illumChange && lm::makeOnce(illumDiff, lm::wrapMul(numPixel, frmChn)) && curFrame != nullptr &&
        bgImg != nullptr) {
      simd::genRdDiff(bgImg, curFrame, illumDiff, compared, 1, frmChn, channel);
    }
  } else {
    lm::makeOnce(rdDiff, numPixel, 255);
  }
  if (prevFgMask == nullptr) {
    lm::makeOnce(prevFgMask, numPixel, 1);
    lm::makeOnce(fgMask, numPixel);
  }
  return skipFrame;
}
