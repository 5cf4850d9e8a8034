// From the times that a container states to times that a detector and an encoder can live with.
#pragma once

#include <chrono>
#include <optional>
#include <string>

namespace lm::host::source {

// Farther than any video reaches; damaged containers state any number.
constexpr std::chrono::microseconds kFarthestTime = std::chrono::years(100);

// The length that a container states; none where that is no length of a video.
std::optional<std::chrono::microseconds> believable_length(std::chrono::microseconds stated);

// Counts from the first frame and always moves forward:
//  - a frame without a time comes one interval after the frame before it;
//  - a frame that is not later than the one before it comes a millisecond after it;
//  - a jump back by more than a second starts a new part (joined recordings, a camera that restarted its
//    clock), which goes on one interval after the last frame;
//  - a time farther away than kFarthestTime counts as none, and a part that would reach that far starts anew
//    like one that jumps back.
class FrameClock {
 public:
  using Time = std::chrono::microseconds;

  // `max_gap`: frames further apart than this are a gap, which is kept but told.
  explicit FrameClock(Time interval, Time max_gap = Time::max()) : interval_(interval), max_gap_(max_gap) {}

  Time interval() const { return interval_; }

  Time next(std::optional<Time> stated);

  // The next frame does not follow the last one: its stated time alone counts.
  void leap() { last_.reset(); }

  // What was odd about the last frame's time, in one line; mostly empty.
  const std::string& note() const { return note_; }

 private:
  Time interval_;
  Time max_gap_;
  std::optional<Time> origin_;  // the stated time that counts as zero
  std::optional<Time> last_;
  std::string note_;
};

}  // namespace lm::host::source
