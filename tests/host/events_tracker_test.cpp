#include "host/events/event_tracker.h"

#include <gtest/gtest.h>

namespace {

using namespace lm::host::events;
using namespace lm::host::source;
using namespace std::chrono_literals;
using Areas = std::vector<cv::Rect2d>;
using std::chrono::microseconds;

// What a tracker reports, in short: "begun 0001", "ended 0001".
struct Log : EventListener {
  explicit Log(std::vector<std::string>& calls, std::vector<Event>& events)
      : calls_(calls), events_(events) {}
  void begun(const Event& event) override { calls_.push_back("begun " + event.id); }
  void changed(const Event& event) override { calls_.push_back("changed " + event.id); }
  void ended(const Event& event) override { keep("ended " + event.id, event); }
  void dropped(const Event& event) override { keep("dropped" + event.id, event); }
  void finish() override { calls_.emplace_back("finish"); }
  void commit() override { calls_.emplace_back("commit"); }

 private:
  void keep(const std::string& text, const Event& event) {
    calls_.push_back(text);
    events_.push_back(event);
  }
  std::vector<std::string>& calls_;
  std::vector<Event>& events_;
};

Boxes boxes_at(const Areas& areas) {
  Boxes boxes;
  for (const cv::Rect2d& area : areas) boxes.push_back({area});
  return boxes;
}

const cv::Rect2d kBox(0.25, 0.5, 0.5, 0.25);

class Tracked : public testing::Test {
 protected:
  explicit Tracked(EventRules rules = {1, 2, 3, 4}) : tracker_(rules) {
    tracker_.add(std::make_unique<Log>(calls_, events_));
  }

  void see(microseconds time, const Areas& boxes, const std::vector<bool>& by_light = {}) {
    Observation seen;
    seen.frame = frame_++;
    seen.time = time;
    seen.boxes = boxes_at(boxes);
    for (std::size_t i = 0; i < by_light.size(); ++i) seen.boxes[i].by_light = by_light[i];
    if (!by_light.empty()) seen.light = LightChange{100, 120, 0.9};
    tracker_.observe(Frame{}, seen);
  }
  // Frames half a second apart, including both ends.
  void see(microseconds from, microseconds to, const Areas& boxes, const std::vector<bool>& by_light = {}) {
    for (microseconds time = from; time <= to; time += 500ms) see(time, boxes, by_light);
  }

  EventTracker tracker_;
  std::vector<std::string> calls_;
  std::vector<Event> events_;
  std::int64_t frame_ = 0;
};

TEST_F(Tracked, AnEventLastsFromItsFirstToItsLastFrameWithBoxes) {
  see(0s, 4500ms, {});
  see(5s, 7s, {kBox});
  see(7500ms, 20s, {});
  ASSERT_EQ(events_.size(), 1U);
  EXPECT_EQ(events_[0].start, 5s);
  EXPECT_EQ(events_[0].end, 7s);
  EXPECT_EQ(events_[0].first_frame, 10);
  EXPECT_EQ(events_[0].last_frame, 14);
  EXPECT_EQ(events_[0].frames, 5);
  EXPECT_EQ(events_[0].from, 2s) << "--pre 3";
  EXPECT_EQ(events_[0].to, 11s) << "--post 4";
}

TEST_F(Tracked, WhatIsShownBeginsWithTheVideoAtTheEarliest) {
  see(1s, 3s, {kBox});
  tracker_.finish("The video ended.");
  EXPECT_EQ(events_.at(0).from, 0s);
}

TEST_F(Tracked, ReportsItOnceItIsLongEnoughAndAtEveryFrameAfterwards) {
  see(0s, 2s, {kBox});
  EXPECT_EQ(calls_, (std::vector<std::string>{"begun 0001", "changed 0001", "changed 0001"}));
  tracker_.finish("The video ended.");
  tracker_.commit();
  EXPECT_EQ(calls_.size(), 6U);
  EXPECT_EQ(calls_[3], "ended 0001");
  EXPECT_EQ(calls_[4], "finish");
  EXPECT_EQ(calls_[5], "commit");
  EXPECT_EQ(events_.at(0).ended, "The video ended.");
  EXPECT_EQ(tracker_.events(), 1);
}

TEST_F(Tracked, DropsWhatIsTooShortAndGivesItNoNumber) {
  see(0s, 500ms, {kBox});
  see(1s, 9500ms, {});
  see(10s, 11s, {kBox});
  tracker_.finish("");
  EXPECT_EQ(calls_, (std::vector<std::string>{"dropped", "begun 0001", "ended 0001", "finish"}));
}

TEST_F(Tracked, APauseAsLongAsTheGapJoinsALongerOneParts) {
  see(0s, 1s, {kBox});
  see(1500ms, 2500ms, {});
  see(3s, 4s, {kBox});  // 2 s after the last box: the same event
  see(4500ms, 6s, {});
  see(6500ms, 8s, {kBox});  // 2.5 s after it: another event
  tracker_.finish("");
  ASSERT_EQ(events_.size(), 2U);
  EXPECT_EQ(events_[0].end, 4s);
  EXPECT_EQ(events_[1].start, 6500ms);
  EXPECT_NE(events_[0].ended.find("for more than 2.000 s after 4.000 s"), std::string::npos);
  EXPECT_NE(events_[1].started.find("nothing had moved for 2.500 s"), std::string::npos);
}

TEST_F(Tracked, ConsecutiveFramesBelongTogetherAtAnyFrameRate) {
  see(0s, {kBox});
  see(10s, {kBox});
  tracker_.finish("");
  ASSERT_EQ(events_.size(), 1U);
  EXPECT_EQ(events_[0].end, 10s);
}

TEST_F(Tracked, AnInterruptionEndsEventsInProgress) {
  see(0s, 2s, {kBox});
  tracker_.interrupt("The source was away.");
  see(2500ms, 5s, {kBox});
  tracker_.finish("");
  ASSERT_EQ(events_.size(), 2U);
  EXPECT_EQ(events_[0].ended, "The source was away.");
  EXPECT_EQ(events_[1].start, 2500ms);
}

TEST_F(Tracked, PeaksWhereMostOfTheFrameIsUnderBoxes) {
  see(0s, {{0, 0, 0.25, 0.5}});
  see(500ms, {{0.5, 0.5, 0.5, 0.5},
              {0.75, 0.5, 0.5, 0.25}});  // the second box lies partly in the first, partly outside the frame
  see(1s, {{0, 0, 0.25, 0.25}});
  tracker_.finish("");
  const Event& event = events_.at(0);
  EXPECT_EQ(event.peak, 500ms);
  EXPECT_EQ(event.peak_frame, 1);
  EXPECT_DOUBLE_EQ(event.peak_share, 0.25);
  EXPECT_EQ(event.most_boxes, 2U);
  EXPECT_EQ(event.envelope, cv::Rect2d(0, 0, 1, 1)) << "cut at the frame's edge";
  EXPECT_EQ(event.largest, cv::Rect2d(0.5, 0.5, 0.5, 0.5));
}

TEST_F(Tracked, OfEqualBoxesTheFirstIsTheLargest) {
  see(0s, {{0, 0, 0.5, 0.5}});
  see(500ms, {{0.5, 0.5, 0.5, 0.5}});
  tracker_.finish("");
  EXPECT_EQ(events_.at(0).largest, cv::Rect2d(0, 0, 0.5, 0.5));
}

TEST_F(Tracked, LightIsAnEventOfItsOwn) {
  see(0s, 2s, {kBox}, {true});
  tracker_.finish("");
  ASSERT_EQ(events_.size(), 1U);
  EXPECT_EQ(events_[0].kind, EventKind::kLight);
  EXPECT_TRUE(events_[0].started.starts_with(
      "The lighting became brighter at 0.000 s: from 100.0 to 120.0 grey levels"));
}

TEST_F(Tracked, LightGoesFromItsFirstBrightnessToItsLast) {
  Observation seen;
  seen.boxes = {{.area = kBox, .by_light = true}};
  for (const LightChange light : {LightChange{100, 120, 0.5}, {110, 130, 0.7}, {120, 140, 0.9}}) {
    seen.light = light;
    tracker_.observe(Frame{}, seen);
    seen.time += 500ms;
  }
  tracker_.finish("");
  ASSERT_EQ(events_.size(), 1U);
  ASSERT_TRUE(events_[0].light);
  EXPECT_EQ(events_[0].light->before, 100);
  EXPECT_EQ(events_[0].light->after, 140);
  EXPECT_EQ(events_[0].light->share, 0.9);
}

TEST_F(Tracked, LightDoesNotEndMotionThatContinuesAfterIt) {
  see(0s, 2s, {kBox});
  see(2500ms, 8s, {kBox}, {true});  // much longer than the gap
  see(8500ms, 10s, {kBox});
  tracker_.finish("");
  ASSERT_EQ(events_.size(), 2U);
  EXPECT_EQ(events_[0].kind, EventKind::kMotion);
  EXPECT_EQ(events_[0].start, 0s);
  EXPECT_EQ(events_[0].end, 10s);
  EXPECT_EQ(events_[0].frames, 9) << "those with the light's boxes do not count: 0 to 2 s and 8.5 to 10 s";
  EXPECT_EQ(events_[1].kind, EventKind::kLight);
}

TEST_F(Tracked, MotionThatIsOverWhenTheLightHasChangedEndedBeforeIt) {
  see(0s, 2s, {kBox});
  see(2500ms, 8s, {kBox}, {true});
  see(8500ms, 12s, {});
  ASSERT_EQ(events_.size(), 2U);
  EXPECT_EQ(events_[0].end, 2s);
  EXPECT_NE(events_[0].ended.find("not counting 6.000 s in which a lighting change"), std::string::npos);
}

TEST_F(Tracked, BoxesOfTheLightAndOfMotionInOneFrameGoToTheirOwn) {
  see(0s, 2s, {kBox, {0, 0, 0.25, 0.25}}, {true, false});
  tracker_.finish("");
  ASSERT_EQ(events_.size(), 2U);
  EXPECT_EQ(events_[0].envelope, cv::Rect2d(0, 0, 0.25, 0.25));
  EXPECT_EQ(events_[1].envelope, kBox);
}

TEST_F(Tracked, AnEventCountsWhenOneOfItsObjectsIsConfirmed) {
  const auto see_one = [&](microseconds time, std::int64_t id, bool confirmed) {
    Observation seen;
    seen.time = time;
    seen.boxes = {{.area = kBox, .id = id, .confirmed = confirmed}};
    tracker_.observe(Frame{}, seen);
  };
  see_one(1s, 1, false);
  see_one(3s, 1, false);
  EXPECT_TRUE(calls_.empty()) << "long enough, but only likely";
  see_one(4s, 1, true);
  see_one(5s, 1, false);
  EXPECT_EQ(calls_, (std::vector<std::string>{"begun 0001", "changed 0001"}));
  see(8s, {});
  ASSERT_EQ(events_.size(), 1U);
  EXPECT_EQ(events_[0].start, 1s) << "dated back to its first box";
  see_one(10s, 2, false);
  see_one(13s, 2, false);
  see(16s, {});
  EXPECT_EQ(calls_.back(), "dropped");
}

TEST(EventTracker, LiveEventsAreDistinguishedByTheWallClock) {
  std::vector<std::string> calls;
  std::vector<Event> events;
  EventTracker tracker({0, 2, 0, 0});
  tracker.add(std::make_unique<Log>(calls, events));
  Observation seen;
  seen.boxes = boxes_at({kBox});
  seen.wall = WallTime(1'700'000'000'123ms);  // 2023-11-14 22:13:20 UTC
  tracker.observe(Frame{}, seen);
  EXPECT_EQ(calls, (std::vector<std::string>{"begun 20231114T221320.123Z-0001"}));

  // The computer's clock is set back by an hour while the event lasts.
  Frame later;
  later.time = seen.time = 1500ms;
  *seen.wall -= 1h;
  tracker.observe(later, seen);
  tracker.finish("");
  EXPECT_EQ(events.at(0).wall_end, WallTime(1'700'000'001'623ms)) << "by the clock at its start";
}

TEST(EventTracker, CollectsTheRegionsOfEveryBoxInTheirOrder) {
  std::vector<std::string> calls;
  std::vector<Event> events;
  EventTracker tracker({0, 2, 0, 0}, {"left", "middle", "right"});
  tracker.add(std::make_unique<Log>(calls, events));
  Observation seen;
  seen.boxes = {{kBox, {"right"}}};
  tracker.observe(Frame{}, seen);
  seen.boxes = {{kBox, {"right"}}, {kBox, {"left"}}};
  tracker.observe(Frame{}, seen);
  tracker.finish("");
  EXPECT_EQ(events.at(0).regions, (std::vector<std::string>{"left", "right"}));
}

struct ShareCase {
  const char* name;
  Areas boxes;
  double share;
};

class Share : public testing::TestWithParam<ShareCase> {};

TEST_P(Share, CountsEveryPlaceOnceAndOnlyInTheFrame) {
  EXPECT_DOUBLE_EQ(share_under(boxes_at(GetParam().boxes)), GetParam().share);
}

INSTANTIATE_TEST_SUITE_P(
    Of, Share,
    testing::Values(ShareCase{"nothing", {}, 0}, ShareCase{"one", {{0.25, 0.25, 0.5, 0.5}}, 0.25},
                    ShareCase{"twice_the_same", {{0, 0, 0.5, 0.5}, {0, 0, 0.5, 0.5}}, 0.25},
                    // 0.25 + 0.25 minus the overlap of 0.0625
                    ShareCase{"overlapping", {{0, 0, 0.5, 0.5}, {0.25, 0.25, 0.5, 0.5}}, 0.4375},
                    ShareCase{"past_the_frame", {{0.5, -1, 2, 3}}, 0.5},
                    ShareCase{"outside", {{2, 2, 1, 1}}, 0},
                    ShareCase{"above_each_other", {{0, 0, 1, 0.25}, {0, 0.5, 1, 0.25}}, 0.5}),
    [](const auto& test) { return test.param.name; });

struct SpanCase {
  const char* text;
  bool good;
};

TEST(EventOptions, SpansAreTwoTimesInOrder) {
  const SpanCase spans[] = {{"11-13.5", true}, {"0-0", true},    {"13-11", false},
                            {"11", false},     {"-1-2", false},  {"1-", false},
                            {"1-2x", false},   {"nan-2", false}, {"", false}};
  for (const SpanCase& span : spans) EXPECT_EQ(parse_span(span.text).has_value(), span.good) << span.text;
  EXPECT_EQ(parse_span("11-13.5")->from, 11s);
  EXPECT_EQ(parse_span("11-13.5")->to, 13500ms);
}

}  // namespace
