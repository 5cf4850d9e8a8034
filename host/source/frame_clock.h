// Turns a container's timestamps into increasing times for the detector and the encoder.
#pragma once

#include <chrono>
#include <optional>
#include <string>

namespace lm::host::source {

// Later than any video; damaged containers state arbitrary numbers.
constexpr std::chrono::microseconds kFarthestTime = std::chrono::years(100);

// The length that a container states; none if implausible.
std::optional<std::chrono::microseconds> believable_length(std::chrono::microseconds stated);

// Counts from the first frame and always increases:
//  - a frame without a timestamp is one interval after the previous frame;
//  - a frame not later than the previous one is one millisecond after it;
//  - a jump back by more than a second starts a new part (joined recordings, a restarted camera clock),
//    one interval after the last frame;
//  - a timestamp beyond kFarthestTime is ignored; a part that would reach it restarts like one that
//    jumps back.
class FrameClock {
 public:
  using Time = std::chrono::microseconds;

  // `max_gap`: longer gaps between frames are kept and reported.
  explicit FrameClock(Time interval, Time max_gap = Time::max()) : interval_(interval), max_gap_(max_gap) {}

  Time interval() const { return interval_; }

  Time next(std::optional<Time> stated);

  // The next frame does not follow the last one: only its stated time is used.
  void leap() { last_.reset(); }

  // The irregularity of the last frame's time, in one line; usually empty.
  const std::string& note() const { return note_; }

 private:
  Time interval_;
  Time max_gap_;
  std::optional<Time> origin_;  // the timestamp that becomes zero
  std::optional<Time> last_;
  std::string note_;
};

}  // namespace lm::host::source
