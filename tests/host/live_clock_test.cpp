// When frames of live sources were taken, with a simulated clock.
#include <gtest/gtest.h>

#include "host/base/time_text.h"
#include "host/source/live/wall_clock.h"
#include "host/source/timestamp.h"

namespace {

using namespace lm::host::source;
using namespace lm::host::source::live;
using namespace std::chrono_literals;
using lm::host::base::WallTime;

constexpr WallTime kBoot{1'700'000'000s};

// Frames of a source whose time began 100 s after the computer was started, and the UTC that they get.
class Camera {
 public:
  // A frame taken at `time` after the first, which arrives `delay` later. Returns how far its UTC is from
  // when it was taken.
  WallClock::Time frame(WallClock::Time time, WallClock::Time delay, bool anew = false) {
    const WallClock::Time taken = 100s + time + suspended_;
    stated_ = WallClock::Time(std::llround(double(time.count()) * rate_));
    const WallClock::Time running = taken + delay;
    last_ = clock_.start(stated_, anew, {running, boot_ + running}) + stated_;
    return std::chrono::duration_cast<WallClock::Time>(last_ - (boot_ + taken));
  }
  WallTime last() const { return last_; }
  WallClock::Time step() const { return clock_.step(); }
  void set_clock(WallClock::Time by) { boot_ += by; }
  void suspend(WallClock::Time length) { suspended_ += length; }
  void run_at(double rate) { rate_ = rate; }

 private:
  WallClock clock_;
  WallTime boot_ = kBoot;
  WallTime last_;
  WallClock::Time stated_{0};
  WallClock::Time suspended_{0};
  double rate_ = 1;
};

TEST(WallClock, TakesTheShortestDelayForThatOfAll) {
  Camera camera;
  EXPECT_EQ(camera.frame(0s, 300ms), 300ms);
  EXPECT_EQ(camera.frame(1s, 50ms), 50ms);
  EXPECT_EQ(camera.frame(2s, 400ms), 50ms);
  EXPECT_EQ(camera.frame(3s, 40ms), 40ms);
}

TEST(WallClock, NeverGoesBackByShorterDelays) {
  Camera camera;
  camera.frame(0s, 5s);  // buffered while the stream was opened
  const WallTime first = camera.last();
  camera.frame(40ms, 4s);
  EXPECT_EQ(camera.last(), first) << "it was taken 0.96 s before, by its arrival";
  EXPECT_EQ(camera.frame(6s, 50ms), 50ms);
}

TEST(WallClock, FollowsStepsOfTheComputersClockAtOnce) {
  Camera camera;
  WallClock::Time time{0};
  camera.frame(time, 50ms);
  for (const WallClock::Time step : {WallClock::Time(3600s), WallClock::Time(-7200s)}) {
    camera.set_clock(step);
    EXPECT_EQ(camera.frame(time += 1s, 50ms), 50ms);
    EXPECT_EQ(camera.step(), step);
    EXPECT_EQ(camera.frame(time += 1s, 50ms), 50ms);
    EXPECT_EQ(camera.step(), 0s) << "reported once";
  }
  camera.set_clock(499ms);
  camera.frame(time += 1s, 50ms);
  EXPECT_EQ(camera.step(), 0s) << "too small to mention";
}

// 0.02 % is 17 s per day.
TEST(WallClock, FollowsACameraWhoseClockIsTooSlowOrTooFast) {
  for (const double rate : {0.9998, 1.0002}) {
    Camera camera;
    camera.run_at(rate);
    for (int second = 0; second < 86'400; ++second) {
      const auto off = camera.frame(std::chrono::seconds(second), 50ms);
      ASSERT_LT(std::chrono::abs(off - 50ms), 15ms) << second << " s at " << rate;
    }
  }
}

TEST(WallClock, IsRightAfterTheComputerWasSuspended) {
  Camera camera;
  for (int second = 0; second < 100; ++second) camera.frame(std::chrono::seconds(second), 50ms);
  camera.suspend(8h);
  EXPECT_EQ(camera.frame(100s, 50ms), 50ms) << "the source's time did not go on";
}

TEST(WallClock, BeginsAnewWithEachConnection) {
  Camera camera;
  for (int second = 0; second < 100; ++second) camera.frame(std::chrono::seconds(second), 50ms);
  camera.suspend(10s);  // stands for an interruption whose length was underestimated
  EXPECT_EQ(camera.frame(100s, 60ms, true), 60ms);
}

TEST(Timestamp, IsTheClockWhenTheFrameWasTaken) {
  SourceInfo info;
  Frame frame;
  frame.time = 2s + 345'678us;
  EXPECT_EQ(timestamp(info, frame), 2347) << "a recording's: rounded, plus 1";
  info.live = true;
  info.start = kBoot;
  EXPECT_EQ(timestamp(info, frame), 1'700'000'002'345);
}

}  // namespace
