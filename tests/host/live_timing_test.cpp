// Waiting, back-off and frame selection, with simulated clocks and random numbers.
#include <gtest/gtest.h>

#include "host/base/back_off.h"
#include "host/base/deadline.h"
#include "host/source/live/frame_picker.h"
#include "host/source/live/newest_frame.h"
#include "host/source/live/scale.h"
#include "host/source/live/shedding.h"

namespace {

using namespace lm::host::base;
using namespace lm::host::source;
using namespace lm::host::source::live;
using namespace std::chrono_literals;

TEST(Deadline, PassesWhenItsTimeIsOver) {
  Deadline::Clock::time_point now{};
  Deadline deadline([&] { return now; });
  EXPECT_FALSE(deadline.passed()) << "none was set";
  deadline.allow(10s);
  now += 9'999ms;
  EXPECT_FALSE(deadline.passed());
  now += 1ms;
  EXPECT_TRUE(deadline.passed());
  deadline.allow(1ms);
  EXPECT_FALSE(deadline.passed()) << "a new one counts from now";
}

TEST(BackOff, DoublesUpToHalfAMinute) {
  BackOff back_off([] { return 1.0; });
  for (const auto expected : {500ms, 1000ms, 2000ms, 4000ms, 8000ms, 16'000ms, 30'000ms, 30'000ms})
    EXPECT_EQ(back_off.next(), expected);
  back_off.reset();
  EXPECT_EQ(back_off.next(), 500ms);
}

TEST(BackOff, DrawsUpToHalfAtRandom) {
  double chance = 0;
  BackOff back_off([&] { return chance; });
  EXPECT_EQ(back_off.next(), 250ms);
  chance = 0.5;
  EXPECT_EQ(back_off.next(), 750ms);  // of 1000: 500 + 0.5 * 500
}

TEST(BackOff, RealChanceIsBetweenZeroAndOne) {
  const auto chance = real_chance();
  for (int i = 0; i < 1000; ++i) {
    const double value = chance();
    ASSERT_TRUE(value >= 0 && value <= 1) << value;
  }
}

std::vector<int> picked(double fps, const std::vector<int>& milliseconds) {
  FramePicker picker(fps);
  std::vector<int> picked;
  for (const int time : milliseconds) {
    if (picker.wants(std::chrono::milliseconds(time))) picked.push_back(time);
  }
  return picked;
}

TEST(FramePicker, TakesAllWithoutALimit) { EXPECT_EQ(picked(0, {0, 1, 2, 40}), (std::vector{0, 1, 2, 40})); }

// Ten per second out of 25: the first frame at or after each tenth of a second.
TEST(FramePicker, TakesTheFirstFrameOfEachInterval) {
  EXPECT_EQ(picked(10, {0, 40, 80, 120, 160, 200, 240, 280, 320, 360, 400}),
            (std::vector{0, 120, 200, 320, 400}));
}

TEST(FramePicker, DoesNotCatchUpAfterAGap) {
  EXPECT_EQ(picked(10, {0, 1000, 1040, 1080, 1120}), (std::vector{0, 1000, 1120}));
}

TEST(FramePicker, TakesAllBelowTheLimit) {
  EXPECT_EQ(picked(30, {0, 40, 80, 120, 160}), (std::vector{0, 40, 80, 120, 160}));
}

TEST(FramePicker, ToleratesRounding) {
  // At 30 frames per second, every third frame is at 99.999 ms and so on.
  FramePicker picker(10);
  for (int i = 0; i < 300; ++i) {
    const std::chrono::microseconds time(i * 100'000 / 3 - (i > 0 ? 1 : 0));
    ASSERT_EQ(picker.wants(time), i % 3 == 0) << i;
  }
}

TEST(FramePicker, TakesFramesUpToAMillisecondBeforeTheirPlace) {
  FramePicker picker(10);
  EXPECT_TRUE(picker.wants(0ms));
  EXPECT_FALSE(picker.wants(98'999us));
  EXPECT_TRUE(picker.wants(99ms));
  EXPECT_FALSE(picker.wants(198'999us)) << "the next place is at 200 ms, not 199";
  EXPECT_TRUE(picker.wants(199ms));
}

Frame numbered(int number) {
  Frame frame;
  frame.number = number;
  return frame;
}

TEST(NewestFrame, DropsTheOneNotTaken) {
  NewestFrame newest;
  EXPECT_TRUE(newest.put(numbered(1)));
  EXPECT_FALSE(newest.put(numbered(2)));
  const auto taken = newest.take(0ms);
  ASSERT_TRUE(taken.frame);
  EXPECT_EQ(taken.frame->number, 2);
  EXPECT_FALSE(newest.take(0ms).frame);
  EXPECT_TRUE(newest.put(numbered(3))) << "nothing was waiting";
}

TEST(NewestFrame, PassesOnTheNoteOfADroppedFrame) {
  NewestFrame newest;
  Frame first = numbered(1);
  first.anew = true;
  first.note = "a";
  Frame second = numbered(2);
  second.note = "b";
  newest.put(first);
  newest.put(second);
  newest.put(numbered(3));
  const auto taken = newest.take(0ms);
  ASSERT_TRUE(taken.frame);
  EXPECT_EQ(taken.frame->number, 3);
  EXPECT_TRUE(taken.frame->anew);
  EXPECT_EQ(taken.frame->note, "a; b");
}

TEST(NewestFrame, GivesTheLastFrameAndThenTheEnd) {
  NewestFrame newest;
  newest.put(numbered(1));
  newest.end();
  const auto last = newest.take(0ms);
  EXPECT_TRUE(last.frame);
  const auto after = newest.take(0ms);
  EXPECT_FALSE(after.frame);
  EXPECT_TRUE(after.ended);
}

std::string messages_of(const NewestFrame::Taken& taken) {
  std::string all;
  for (const NewestFrame::News& news : taken.news) all += news.message;
  return all;
}

TEST(NewestFrame, KeepsFramesAndNewsInOrder) {
  NewestFrame newest;
  newest.put_news({"a"});
  newest.put(numbered(1));
  newest.put_news({"b"});
  newest.put_news({"c"});
  const auto first = newest.take(0ms);
  EXPECT_TRUE(first.frame);
  EXPECT_EQ(messages_of(first), "a");
  const auto second = newest.take(0ms);
  EXPECT_FALSE(second.frame);
  EXPECT_EQ(messages_of(second), "bc");
}

TEST(NewestFrame, GivesTheNewsBeforeAFrameThatReplacedAnother) {
  NewestFrame newest;
  newest.put(numbered(1));
  newest.put_news({"a"});
  newest.put(numbered(2));
  const auto taken = newest.take(0ms);
  ASSERT_TRUE(taken.frame);
  EXPECT_EQ(taken.frame->number, 2);
  EXPECT_EQ(messages_of(taken), "a");
}

TEST(Shedding, ReportsHowManyFramesAPeriodLost) {
  const Shedding::Time start{};
  Shedding shedding(start);
  EXPECT_EQ(shedding.count(true, start + 10s), "");
  EXPECT_EQ(shedding.count(false, start + 20s), "");
  EXPECT_EQ(shedding.count(true, start + 30s),
            "2 of 3 frames dropped in the last 30 s, because analysis is slower than the source");
  EXPECT_EQ(shedding.count(true, start + 31s), "") << "a new period";
}

TEST(Shedding, RoundsThePeriod) {
  const Shedding::Time start{};
  EXPECT_EQ(Shedding(start).count(true, start + 30'600ms),
            "1 of 1 frames dropped in the last 31 s, because analysis is slower than the source");
}

TEST(Shedding, ReportsNothingWhenNothingWasLost) {
  const Shedding::Time start{};
  Shedding shedding(start);
  EXPECT_EQ(shedding.count(false, start + 30s), "");
  EXPECT_EQ(shedding.count(false, start + 60s), "");
}

TEST(Scale, IsAFactorOrASize) {
  ASSERT_TRUE(parse_scale("0.5"));
  EXPECT_EQ(parse_scale("0.5")->of({641, 361}),
            cv::Size(321, 181));  // 320.5 and 180.5 rounded away from zero
  ASSERT_TRUE(parse_scale("320x200"));
  EXPECT_EQ(parse_scale("320x200")->of({640, 360}), cv::Size(320, 200));
  for (const char* wrong : {"", "0", "-1", "1.5", "x", "3x", "x3", "0x5", "5x0", "320x200x1", "nan", "1e9x5"})
    EXPECT_FALSE(parse_scale(wrong)) << wrong;
}

TEST(Scale, NeverEnlargesFramesOrMakesThemEmpty) {
  EXPECT_EQ(parse_scale("1000x1000")->of({640, 360}), cv::Size(640, 360));
  EXPECT_EQ(parse_scale("0.001")->of({640, 3}), cv::Size(1, 1));
  EXPECT_EQ(Scale{}.of({640, 360}), cv::Size(640, 360));
}

}  // namespace
