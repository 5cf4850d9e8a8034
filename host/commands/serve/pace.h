// Plays videos in real time: when to show a frame, and which frames to skip.
#pragma once

#include <chrono>
#include <optional>

namespace lm::host::commands::serve {

class Pace {
 public:
  using Clock = std::chrono::steady_clock;
  using Time = std::chrono::microseconds;

  // Frames later than this are skipped, so that the video keeps up.
  static constexpr Time kLate{100'000};
  // Beyond this, something other than the analysis caused the delay: the clock restarts.
  static constexpr Time kLost{1'000'000};

  // When to show the frame at this time; none to skip it. The first one is shown at once.
  std::optional<Clock::time_point> due(Time frame, Clock::time_point now);

  // The next frame counts as the first one again.
  void reset() { origin_.reset(); }

 private:
  std::optional<Clock::time_point> origin_;  // when the video's time 0 would have been shown
};

}  // namespace lm::host::commands::serve
