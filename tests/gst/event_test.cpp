#include "gst/event.h"

#include <gtest/gtest.h>

#include <string>

namespace lm::gst {
namespace {

// What happens in frames 100 ms apart, of which '#' have boxes: "1" where an event begins, "0" where one
// ends,
// "+" for both.
std::string happenings(const std::string& frames, GstClockTime hold, GstClockTime interval = 100) {
  EventTracker tracker;
  std::string found;
  GstClockTime now = 0;
  for (const char frame : frames) {
    const EventTracker::Step step = tracker.frame({now, now, now}, now, frame == '#', hold);
    found += step.begun && step.ended ? '+' : step.begun ? '1' : step.ended ? '0' : '.';
    now += interval;
  }
  return found;
}

TEST(GstEvent, EndsAfterMoreThanTheHoldTime) {
  EXPECT_EQ(happenings("..##.....", 300),  //
            "..1....0.");
  EXPECT_EQ(happenings("..##...##.....", 400),  //
            "..1..........0");
  EXPECT_EQ(happenings("#....", 0),  //
            "10...");
}

TEST(GstEvent, AnotherBeginsInTheFrameThatEndsOne) {
  EXPECT_EQ(happenings("#..#", 200),  //
            "1..+");
}

TEST(GstEvent, ConsecutiveFramesWithBoxesBelongTogetherHoweverFarApart) {
  EXPECT_EQ(happenings("###.#", 200, 1000),  //
            "1..01");
}

TEST(GstEvent, AnInterruptionEndsIt) {
  EventTracker tracker;
  EXPECT_FALSE(tracker.interrupt());
  tracker.frame({}, 50, true, 100);
  tracker.frame({}, 90, true, 100);
  const auto ended = tracker.interrupt();
  ASSERT_TRUE(ended);
  EXPECT_EQ(ended->number, 1U);
  EXPECT_EQ(ended->frames, 2U);
  EXPECT_EQ(ended->endedAt - ended->beganAt, 40U);
  const auto next = tracker.frame({}, 91, true, 100).begun;
  ASSERT_TRUE(next);
  EXPECT_EQ(next->number, 2U);
}

TEST(GstEvent, TimeThatGoesBackEndsNothing) {
  EventTracker tracker;
  tracker.frame({}, 5000, true, 100);
  EXPECT_FALSE(tracker.frame({}, 10, false, 100).ended);
}

}  // namespace
}  // namespace lm::gst
