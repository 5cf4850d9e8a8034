// The differences that the model reads: frame to frame, and background to frame, on one channel.
#include "engine/aligned.h"
#include "engine/kamble.h"
#include "engine/ranges.h"
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

void lm::differRange(kAMBLE& engine, int channel, std::size_t begin, std::size_t end) {
  if (channel == noDifference || engine.curFrame == nullptr) return;
  const std::size_t offset = begin * static_cast<std::size_t>(engine.frmChn);
  const auto count = static_cast<int>(end - begin);
  const std::uint8_t* current = engine.curFrame + offset;
  if (engine.rdDiff != nullptr) {
    simd::genRdDiff(engine.prevFrame + offset, current, engine.rdDiff + begin, count, 1, engine.frmChn,
                    channel);
  }
  if (engine.illumChange && engine.illumDiff != nullptr && engine.bgImg != nullptr) {
    simd::genRdDiff(engine.bgImg + offset, current, engine.illumDiff + begin, count, 1, engine.frmChn,
                    channel);
  }
}

bool kAMBLE::heuristic_ncv() {
  const int channel = prepareDifferences();
  lm::differRange(*this, channel, 0, lm::countOf(lm::wrapMul(szImgX, szImgY)));
  return skipFrame;
}
