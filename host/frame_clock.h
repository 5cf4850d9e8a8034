// From the times that a container states to times that a detector and an encoder can live with.
#pragma once

#include <chrono>
#include <optional>

namespace lm::host {

// Counts from the first frame and always moves forward:
//  - a frame without a time comes one interval after the frame before it;
//  - a frame that is not later than the one before it comes a millisecond after it;
//  - a jump back by more than a second starts a new part (joined recordings, a camera that restarted its
//  clock), which
//    goes on one interval after the last frame;
//  - damaged containers state any number: a time a hundred years or more away counts as none, and a part that
//  would
//    reach that far starts anew like one that jumps back.
class FrameClock {
 public:
  using Time = std::chrono::microseconds;

  explicit FrameClock(Time interval) : interval_(interval) {}

  Time interval() const { return interval_; }

  Time next(std::optional<Time> stated);

 private:
  Time interval_;
  std::optional<Time> origin_;  // the stated time that counts as zero
  std::optional<Time> last_;
};

}  // namespace lm::host
