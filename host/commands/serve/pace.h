// Real time for videos: when to show a frame, and which ones to leave out.
#pragma once

#include <chrono>
#include <optional>

namespace lm::host::commands::serve {

class Pace {
 public:
  using Clock = std::chrono::steady_clock;
  using Time = std::chrono::microseconds;

  // A frame so late is left out, so that the video does not fall behind.
  static constexpr Time kLate{100'000};
  // One so late was held up by more than its analysis, and is the new beginning.
  static constexpr Time kLost{1'000'000};

  // When to show the frame of this time; nothing to leave it out. The first one is shown at once.
  std::optional<Clock::time_point> due(Time frame, Clock::time_point now);

  // The next frame is a first one again.
  void reset() { origin_.reset(); }

 private:
  std::optional<Clock::time_point> origin_;  // when the video's time 0 would have been shown
};

}  // namespace lm::host::commands::serve
