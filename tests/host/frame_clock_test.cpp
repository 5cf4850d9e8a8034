#include "host/source/frame_clock.h"

#include <gtest/gtest.h>

namespace {

using lm::host::source::FrameClock;
using namespace std::chrono_literals;

TEST(FrameClock, CountsFromTheFirstFrame) {
  FrameClock clock(40ms);
  EXPECT_EQ(clock.next(1'400ms), 0ms);
  EXPECT_EQ(clock.next(1'440ms), 40ms);
}

TEST(BelievableLength, IsThatOfAVideo) {
  using lm::host::source::believable_length;
  EXPECT_EQ(lm::host::source::believable_length(1us), 1us);
  EXPECT_EQ(lm::host::source::believable_length(std::chrono::years(100)), std::chrono::years(100));
  EXPECT_EQ(lm::host::source::believable_length(0us), std::nullopt);
  EXPECT_EQ(lm::host::source::believable_length(-1us), std::nullopt);
  EXPECT_EQ(lm::host::source::believable_length(std::chrono::years(100) + 1us), std::nullopt);
}

TEST(FrameClock, KeepsUnevenTimes) {
  FrameClock clock(40ms);
  clock.next(0ms);
  EXPECT_EQ(clock.next(33'367us), 33'367us);
  EXPECT_EQ(clock.next(9s), 9s);
}

TEST(FrameClock, PutsAFrameWithoutTimeOneIntervalLater) {
  FrameClock clock(40ms);
  EXPECT_EQ(clock.next(std::nullopt), 0ms);
  EXPECT_EQ(clock.next(std::nullopt), 40ms);
  EXPECT_EQ(clock.next(100ms), 80ms) << "the first stated time belongs to where the count has come";
  EXPECT_EQ(clock.next(140ms), 120ms);
}

TEST(FrameClock, AdvancesByAMillisecondWhenTimeStopsOrStepsBack) {
  FrameClock clock(40ms);
  clock.next(0ms);
  clock.next(500ms);
  EXPECT_EQ(clock.next(500ms), 501ms);
  EXPECT_EQ(clock.next(480ms), 502ms);
  EXPECT_EQ(clock.next(540ms), 540ms) << "later frames keep their times";
}

TEST(FrameClock, ContinuesAfterAJumpBack) {
  FrameClock clock(40ms);
  clock.next(10s);
  clock.next(15s);
  EXPECT_EQ(clock.next(2s), 5'040ms);
  EXPECT_EQ(clock.next(2'100ms), 5'140ms);
}

TEST(FrameClock, TakesMoreThanASecondBackForAJump) {
  FrameClock back(40ms);
  back.next(0ms);
  back.next(5s);
  EXPECT_EQ(back.next(4s), 5'001ms) << "a second is a step back";
  EXPECT_EQ(back.note(), "");
  FrameClock jump(40ms);
  jump.next(0ms);
  jump.next(5s);
  EXPECT_EQ(jump.next(3'999ms), 5'040ms);
  EXPECT_NE(jump.note(), "");
}

TEST(FrameClock, NotesGapsLongerThanTheLimit) {
  FrameClock clock(40ms, 1s);
  clock.next(0ms);
  clock.next(1s);
  EXPECT_EQ(clock.note(), "");
  clock.next(2'001ms);
  EXPECT_EQ(clock.note(), "no frame for 1.001 s");
}

// Found by fuzzing: differences and sums of such times overflow 64 bits.
TEST(FrameClock, IgnoresTimesAHundredYearsAway) {
  FrameClock clock(40ms);
  EXPECT_EQ(clock.next(FrameClock::Time::min()), 0ms);
  EXPECT_EQ(clock.next(FrameClock::Time::max()), 40ms);
  EXPECT_EQ(clock.next(5s), 80ms) << "the first time that counts";
  EXPECT_EQ(clock.next(FrameClock::Time::max()), 120ms);
  EXPECT_EQ(clock.next(5'200ms), 280ms);
}

TEST(FrameClock, NeverGetsFurtherThanAHundredYearsByJumping) {
  FrameClock clock(40ms);
  const FrameClock::Time away = std::chrono::years(99);
  FrameClock::Time last = -1us;
  for (int i = 0; i < 2000; ++i) {
    const auto now = clock.next(i % 2 == 0 ? -away : away);
    ASSERT_GT(now, last);
    ASSERT_LE(now, std::chrono::years(100));
    last = now;
  }
}

}  // namespace
