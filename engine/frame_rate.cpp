// The frame-rate estimate, from the host's timestamps or from the wall clock.
//
// Kept: the two differ. Timestamps give the momentary rate, unsmoothed, and the static life follows only
// while the rate is a usual one; the wall clock gives a smoothed, clamped rate and the static life follows
// every time.
#include "base/integers.h"
#include "engine/kamble.h"
#include "engine/rules.h"

namespace {

void rateFromTimestamps(kAMBLE& engine) {
  const std::int64_t previous = engine.prevTimestamp;
  engine.prevTimestamp = engine.curTimestamp;
  if (previous == -1) return;
  const double seconds = static_cast<double>(lm::wrapSub(engine.curTimestamp, previous)) / 1000.0;
  if (seconds <= 0.0) {
    engine.frmRate = 0.0;
    return;
  }
  engine.frmRate = 1.0 / seconds;
  if (lm::isUsualRate(engine.frmRate)) {
    engine.lifeStaticFrm = lm::staticLifeFrames(engine.lifeStatic, engine.frmRate);
  }
}

// A hundredth of the rate, clamped to the usual range.
double smoothingStep(double rate) {
  if (rate < lm::minRate) return 0.03;
  if (rate > lm::maxRate) return 0.4;
  return 0.01 * rate;
}

void rateFromClock(kAMBLE& engine) {
  gettimeofday(&engine.curTime, nullptr);
  const std::int64_t seconds =
      lm::wrapSub(std::int64_t{engine.curTime.tv_sec}, std::int64_t{engine.prevTime.tv_sec});
  const std::int64_t microseconds =
      lm::wrapSub(std::int64_t{engine.curTime.tv_usec}, std::int64_t{engine.prevTime.tv_usec});
  engine.elapsedUs = lm::wrapAdd(lm::wrapMul(seconds, std::int64_t{engine.usPerSec}), microseconds);
  engine.prevTime = engine.curTime;
  // A clock that was set back counts as a very long time, that is as a very low rate.
  const auto elapsed = static_cast<double>(static_cast<std::uint64_t>(engine.elapsedUs));
  const double rate = 1.0 / (elapsed / engine.usPerSec);
  engine.frmRate = 0.99 * engine.frmRate + smoothingStep(rate);
  engine.lifeStaticFrm = lm::staticLifeFrames(engine.lifeStatic, engine.frmRate);
}

}  // namespace

void kAMBLE::estFrameRate() {
  if (curTimestamp > 0) {
    rateFromTimestamps(*this);
  } else {
    rateFromClock(*this);
  }
}
