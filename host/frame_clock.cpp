#include "host/frame_clock.h"

namespace lm::host {

using namespace std::chrono_literals;

namespace {

constexpr FrameClock::Time farthest = std::chrono::years(100);

}  // namespace

FrameClock::Time FrameClock::next(std::optional<Time> stated) {
  const Time expected = last_ ? *last_ + interval_ : Time{0};
  Time now = expected;
  if (stated && *stated >= -farthest && *stated <= farthest) {
    if (!origin_) origin_ = *stated - expected;
    now = *stated - *origin_;
    if (last_ && (now < *last_ - 1s || now > farthest)) {
      origin_ = *stated - expected;
      now = expected;
    } else if (last_ && now <= *last_) {
      now = *last_ + 1ms;
    }
  }
  last_ = now;
  return now;
}

}  // namespace lm::host
