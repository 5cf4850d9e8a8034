// When the frames of a live source were taken, by the computer's clock.
#pragma once

#include <chrono>
#include <optional>

namespace lm::host::source::live {

// A frame arrives some time after it was taken; how long after, varies. The shortest delay of the last half
// minute is taken for that of every frame. It is measured with a clock that nobody sets and that also runs
// while the computer is suspended, and translated to UTC when asked: so the result follows steps of the
// wall clock at once, and a camera whose clock is too fast or too slow has no effect.
class WallClock {
 public:
  using Time = std::chrono::microseconds;
  using Wall = std::chrono::system_clock::time_point;

  struct Now {
    Time running;  // since the computer was started
    Wall wall;
  };
  static Now now();

  // A frame has arrived; `time`: by the source's clock, later than that of the frame before. `anew`: the
  // connection is a new one. Returns the wall clock at time 0: plus `time`, it is when the frame was taken,
  // never earlier than the frame before unless the wall clock was set back.
  Wall start(Time time, bool anew, const Now& now);

  // By how much the wall clock was set between the last two frames; 0 below half a second.
  Time step() const { return step_; }

 private:
  struct Window {
    Time begin;
    Time earliest;  // arrival of time 0
    Time before;    // the same in the window before
  };
  std::optional<Window> window_;
  Time last_arrival_{0};
  Time last_taken_{0};
  std::optional<Wall> last_boot_;  // wall clock when the computer was started
  Time step_{0};
};

}  // namespace lm::host::source::live
