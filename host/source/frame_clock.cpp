#include "host/source/frame_clock.h"

#include "host/base/time_text.h"

namespace lm::host::source {

using namespace std::chrono_literals;

std::optional<FrameClock::Time> believable_length(FrameClock::Time stated) {
  if (stated.count() <= 0 || stated > kFarthestTime) return std::nullopt;
  return stated;
}

FrameClock::Time FrameClock::next(std::optional<Time> stated) {
  const Time expected = last_ ? *last_ + interval_ : Time{0};
  Time now = expected;
  note_.clear();
  if (stated && *stated >= -kFarthestTime && *stated <= kFarthestTime) {
    if (!origin_) origin_ = *stated - expected;
    now = *stated - *origin_;
    if (last_ && (now < *last_ - 1s || now > kFarthestTime)) {
      note_ = now > kFarthestTime ? "the source's clock jumped too far; time continues from the last frame"
                                  : "the source's clock went back by " + base::seconds_text(*last_ - now) +
                                        " s; time continues from the last frame";
      origin_ = *stated - expected;
      now = expected;
    } else if (last_ && now <= *last_) {
      now = *last_ + 1ms;
    } else if (last_ && now - *last_ > max_gap_) {
      note_ = "no frame for " + base::seconds_text(now - *last_) + " s";
    }
  }
  last_ = now;
  return now;
}

}  // namespace lm::host::source
