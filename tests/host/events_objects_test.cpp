// Events of objects and groups.
#include <gtest/gtest.h>

#include "host/events/event_json.h"
#include "host/events/event_tracker.h"

namespace {

using namespace lm::host::events;
using namespace lm::host::source;
using namespace std::chrono_literals;
using std::chrono::microseconds;
using Ids = std::vector<std::int64_t>;

struct Keep : EventListener {
  explicit Keep(std::vector<Event>& events) : events_(events) {}
  void ended(const Event& event) override { events_.push_back(event); }

 private:
  std::vector<Event>& events_;
};

Box box_of(std::int64_t id, const cv::Rect2d& area, Ids others = {}, std::vector<std::string> regions = {}) {
  return {area, std::move(regions), false, id, std::move(others)};
}

// Frames half a second apart.
class Grouped : public testing::Test {
 protected:
  Grouped() { tracker_.add(std::make_unique<Keep>(events_)); }

  void see(const Boxes& boxes) {
    Observation seen;
    seen.frame = frame_++;
    seen.time = seen.frame * 500ms;
    seen.boxes = boxes;
    tracker_.observe(Frame{}, seen);
  }
  void see(int frames, const Boxes& boxes) {
    for (int i = 0; i < frames; ++i) see(boxes);
  }
  // Those that have ended, by the ids of their objects.
  std::vector<Ids> objects() {
    tracker_.finish("");
    std::vector<Ids> all;
    for (const Event& event : events_) {
      Ids& ids = all.emplace_back();
      for (const EventObject& object : event.objects) ids.push_back(object.id);
    }
    return all;
  }

  EventTracker tracker_{{1, 2, 0, 0}, {"door", "path"}, {{"kerb", {0.5, 0}, {0.5, 1}, std::nullopt}}};
  std::vector<Event> events_;
  std::int64_t frame_ = 0;
};

const cv::Rect2d kLeft(0.1, 0.4, 0.1, 0.2);
const cv::Rect2d kRight(0.7, 0.4, 0.1, 0.2);

TEST_F(Grouped, EachObjectHasItsOwnEvent) {
  see(4, {box_of(1, kLeft), box_of(2, kRight)});
  see(4, {box_of(1, kLeft)});
  ASSERT_EQ(objects(), (std::vector<Ids>{{1}, {2}}));
  EXPECT_EQ(events_[0].end, 3500ms);
  EXPECT_EQ(events_[1].end, 1500ms);
  EXPECT_DOUBLE_EQ(events_[0].envelope.br().x, kLeft.br().x);
  EXPECT_EQ(events_[1].most_boxes, 1U);
}

TEST_F(Grouped, WhatAppearsBesideAnObjectBelongsToItsEvent) {
  see(4, {box_of(1, kLeft)});
  // Enlarged by a quarter of their widths of 0.1 each, boxes 0.05 apart touch.
  see(4, {box_of(1, kLeft), box_of(2, {0.249, 0.4, 0.1, 0.2})});
  EXPECT_EQ(objects(), (std::vector<Ids>{{1, 2}}));
}

TEST_F(Grouped, WhatAppearsFartherAwayDoesNot) {
  see(4, {box_of(1, kLeft)});
  see(4, {box_of(1, kLeft), box_of(2, {0.251, 0.4, 0.1, 0.2})});
  EXPECT_EQ(objects(), (std::vector<Ids>{{1}, {2}}));
}

TEST_F(Grouped, ObjectsThatPassEachOtherKeepTheirEvents) {
  see(4, {box_of(1, kLeft), box_of(2, kRight)});
  see(2, {box_of(1, kLeft | kRight, {2})});
  see(4, {box_of(2, kLeft), box_of(1, kRight)});
  ASSERT_EQ(objects(), (std::vector<Ids>{{1}, {2}}));
  EXPECT_EQ(events_[0].frames, 10);
  EXPECT_EQ(events_[1].frames, 10);
  EXPECT_LT(events_[0].peak_share, 0.021) << "the shared box is not its picture";
}

TEST_F(Grouped, WhoStandsStillAndGoesOnWithinTheGapHasOneEvent) {
  see(4, {box_of(1, kLeft)});
  see(3, {});
  see(4, {box_of(2, kLeft)});  // 2 s after the last box, with a new id
  EXPECT_EQ(objects(), (std::vector<Ids>{{1, 2}}));
}

TEST_F(Grouped, AfterTheGapItIsAnotherEvent) {
  see(4, {box_of(1, kLeft)});
  see(4, {});
  see(4, {box_of(2, kLeft)});
  EXPECT_EQ(objects(), (std::vector<Ids>{{1}, {2}}));
}

TEST_F(Grouped, WhoEntersWhereAnotherLeftTheFrameHasItsOwnEvent) {
  const cv::Rect2d border(0.01, 0.4, 0.1, 0.2);
  see(4, {box_of(1, border)});
  see(1, {});
  see(4, {box_of(2, border)});
  EXPECT_EQ(objects(), (std::vector<Ids>{{1}, {2}}));
}

TEST_F(Grouped, ObjectsShorterThanAnEventAreNotListed) {
  see(4, {box_of(1, kLeft)});
  see(1, {box_of(1, kLeft), box_of(2, kLeft)});
  see(4, {box_of(1, kLeft)});
  EXPECT_EQ(objects(), (std::vector<Ids>{{1}}));
  EXPECT_EQ(events_[0].most_boxes, 2U);
}

TEST_F(Grouped, StartedSaysWhetherSomethingElseWasMoving) {
  see(4, {box_of(1, kLeft)});
  see(4, {box_of(1, kLeft), box_of(2, kRight)});
  objects();
  EXPECT_NE(events_.at(0).started.find("where nothing had moved before"), std::string::npos);
  EXPECT_NE(events_.at(1).started.find("apart from what was moving already"), std::string::npos);
}

TEST_F(Grouped, PathsAreSimplifiedToTheirTurns) {
  for (int i = 0; i < 5; ++i) see({box_of(1, {0.1 + 0.1 * i, 0.2, 0.1, 0.2})});
  for (int i = 1; i < 4; ++i) see({box_of(1, {0.5, 0.2 + 0.1 * i, 0.1, 0.2})});
  objects();
  const auto path = simplified(events_.at(0).objects.at(0).path, kPathTolerance);
  ASSERT_LE(path.size(), 4U) << "of eight";
  EXPECT_EQ(path.front().time, 0s);
  EXPECT_NEAR(path.front().place.x, 0.15, 1e-9) << "the middle";
  EXPECT_NEAR(path.front().place.y, 0.4, 1e-9) << "of the lower edge";
  EXPECT_EQ(path[1].time, 2s) << "the turn";
  EXPECT_NEAR(path[1].place.x, 0.55, 0.02);
  EXPECT_NEAR(path[1].place.y, 0.4, 0.02);
  EXPECT_EQ(path.back().time, 3500ms);
  EXPECT_NEAR(path.back().place.y, 0.7, 0.02);
}

TEST_F(Grouped, PathsHaveABoundedNumberOfPoints) {
  for (int i = 0; i < 2000; ++i) see({box_of(1, {0.1 + 0.1 * (i % 7), 0.1 + 0.1 * (i % 5), 0.1, 0.2})});
  objects();
  EXPECT_LE(events_.at(0).objects.at(0).path.size(), Trajectories::kMostPoints);
}

TEST_F(Grouped, VisitsLastFromTheFirstFrameInARegionToTheLast) {
  see(2, {box_of(1, kLeft)});
  see(3, {box_of(1, kLeft, {}, {"door"})});
  see(3, {box_of(1, kLeft)});  // out for 2 s: the gap
  see(2, {box_of(1, kLeft, {}, {"door", "path"})});
  see(4, {box_of(1, kLeft)});  // out for longer
  see(1, {box_of(1, kLeft, {}, {"door"})});
  objects();
  const auto& visits = events_.at(0).visits;
  ASSERT_EQ(visits.size(), 3U);
  EXPECT_EQ(visits[0].region, "door");
  EXPECT_EQ(visits[0].object, 1);
  EXPECT_EQ(visits[0].start, 1s);
  EXPECT_EQ(visits[0].end, 4500ms);
  EXPECT_EQ(visits[1].region, "path");
  EXPECT_EQ(visits[2].start, 7s);
}

TEST_F(Grouped, ASharedBoxBeginsNoVisit) {
  see(3, {box_of(1, kLeft, {2}, {"door"})});
  objects();
  EXPECT_TRUE(events_.at(0).visits.empty());
}

// The line is upright at 0.5, seen from its upper end: the left side of the picture is on its right.
TEST_F(Grouped, CrossingsNameTheSideToWhichAnObjectWent) {
  for (const double x : {0.3, 0.4, 0.49, 0.51, 0.6}) see({box_of(1, {x - 0.05, 0.4, 0.1, 0.2})});
  for (const double x : {0.51, 0.495, 0.505, 0.48}) see({box_of(1, {x - 0.05, 0.4, 0.1, 0.2})});
  objects();
  const auto& crossings = events_.at(0).crossings;
  ASSERT_EQ(crossings.size(), 2U) << "standing on the line is not crossing it";
  EXPECT_EQ(crossings[0].line, "kerb");
  EXPECT_EQ(crossings[0].to, lm::host::detector::Side::kLeft);
  EXPECT_EQ(crossings[0].time, 1500ms) << "at 0.51";
  EXPECT_EQ(crossings[1].to, lm::host::detector::Side::kRight);
  EXPECT_EQ(crossings[1].time, 4s) << "at 0.48";
}

TEST(Crossings, CountOnlyOnTheLineAndInItsDirection) {
  using lm::host::detector::Side;
  std::vector<Event> events;
  EventTracker tracker({0, 2, 0, 0}, {},
                       {{"upper", {0.5, 0}, {0.5, 0.5}, std::nullopt},
                        {"lower", {0.5, 0.5}, {0.5, 1}, Side::kLeft},
                        {"other way", {0.5, 0.5}, {0.5, 1}, Side::kRight}});
  tracker.add(std::make_unique<Keep>(events));
  for (int i = 0; i < 5; ++i) {
    Observation seen;
    seen.time = i * 500ms;
    seen.boxes = {box_of(1, {0.2 + 0.1 * i, 0.6, 0.1, 0.2})};  // its lower edge is at 0.8
    tracker.observe(Frame{}, seen);
  }
  tracker.finish("");
  ASSERT_EQ(events.at(0).crossings.size(), 1U);
  EXPECT_EQ(events[0].crossings[0].line, "lower");
}

TEST(EventJson, NamesObjectsVisitsAndCrossings) {
  Event event;
  event.objects = {{3, 1s, 4s, {{1s, {0.1, 0.2}}, {4s, {0.5, 0.2}}}}, {5, 2s, 3s, {{2s, {0.1, 0.2}}}}};
  event.visits = {{"door", 3, 1s, 2s}};
  event.crossings = {{"kerb", 3, 2s, lm::host::detector::Side::kLeft}};
  const std::string text = event_json(event);
  for (const char* part :
       {R"("objects":[{"id":3,"start":1.000,"end":4.000,"path":[{"time":1.000,"x":0.100000,"y":0.200000},)",
        R"("dwell":3.000)", R"("visits":[{"name":"door","object":3,"start":1.000,"end":2.000}])",
        R"("crossings":[{"name":"kerb","object":3,"time":2.000,"direction":"left"}])"}) {
    EXPECT_NE(text.find(part), std::string::npos) << part << "\n" << text;
  }
}

TEST(Lines, AreReadFromTheDocument) {
  using namespace lm::host::detector;
  const auto lines = lines_of(R"({"lines": [
      {"name": "kerb", "points": [{"x": "0.25", "y": "0.5"}, {"x": 0.75, "y": "1"}], "direction": "left"},
      {"points": [{"x": "0", "y": "0"}, {"x": "1", "y": "1"}], "direction": "both"},
      {"points": [{"x": "0", "y": "0"}]}, {"points": [{"x": "0", "y": "0"}, {"x": "0", "y": "0"}]},
      {"points": [{"x": "0", "y": "0"}, {"x": "a", "y": "0"}]}, 7]})");
  ASSERT_EQ(lines.size(), 2U);
  EXPECT_EQ(lines[0].name, "kerb");
  EXPECT_EQ(lines[0].from, cv::Point2d(0.25, 0.5));
  EXPECT_EQ(lines[0].to, cv::Point2d(0.75, 1));
  EXPECT_EQ(lines[0].only, Side::kLeft);
  EXPECT_FALSE(lines[1].only);
  for (const char* text : {"", "7", "{}", R"({"lines": {"points": []}})"})
    EXPECT_TRUE(lines_of(text).empty());
}

}  // namespace
