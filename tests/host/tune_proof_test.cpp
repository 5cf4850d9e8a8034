// What tune counts and proves, on constructed figures.
#include <gtest/gtest.h>

#include "host/commands/tune/proof.h"
#include "tests/host/tune_looks.h"

namespace {

using namespace tune_looks;

TEST(TuneFigures, CountFramesFromASpansStartUpToItsEnd) {
  const Marks marks{.quiet = {span(0, 1)}, .motion = {span(1, 3)}};
  //                                        0   .5  1   1.5 2   2.5 3
  const Figures figures = figures_of(seen("-##-###"), marks);
  EXPECT_EQ(figures.frames, 5);
  EXPECT_EQ(figures.quiet_frames, 1) << "at 0.5; the one at 1 belongs to the motion";
  EXPECT_EQ(figures.motion_frames, 3) << "at 1, 2 and 2.5; 3 is the end";
}

TEST(TuneFigures, CountEventsInEveryKindOfSpanThatTheyTouch) {
  Seen all = seen("--------");
  all.happenings = {motion(0.5, 1.5), motion(3, 3.5)};
  const Figures figures = figures_of(all, {.quiet = {span(0, 1)}, .motion = {span(1, 3)}});
  EXPECT_EQ(figures.events, 2U);
  EXPECT_EQ(figures.quiet_events, 1U);
  EXPECT_EQ(figures.motion_events, 1U) << "the second begins where the span ends";
}

TEST(TuneFigures, CountEventsWhoseLastFrameIsTheFirstOfASpan) {
  const Marks marks{.quiet = {span(2, 3)}, .motion = {span(1, 2)}};
  Seen all = seen("--##-#--");
  all.happenings = {motion(0, 1), motion(0, 0.999999)};
  Figures figures = figures_of(all, marks);
  EXPECT_EQ(figures.motion_events, 1U);
  EXPECT_EQ(figures.found, 1U);
  EXPECT_EQ(figures.quiet_events, 0U);
  all.happenings = {motion(0, 0.999999), motion(1.5, 2)};
  figures = figures_of(all, marks);
  EXPECT_EQ(figures.quiet_events, 1U);
}

TEST(TuneFigures, CountASpanAsFoundWithBoxesAndAMotionEvent) {
  const Marks marks{.quiet = {}, .motion = {span(0, 1), span(1, 2), span(2, 3), span(3, 4)}};
  Seen all = seen("##--##--");
  Happening light = motion(2, 2.5);
  light.kind = EventKind::kLight;
  all.happenings = {motion(0, 1.5), light};
  // The second span has no boxes, the third only a lighting event, the fourth nothing.
  EXPECT_EQ(figures_of(all, marks).found, 1U);
}

TEST(TuneFigures, CountMovingBoxesThatOverlapByHalf) {
  Seen all = seen("###-");
  // Moved by a third of its width: (2/3) / (4/3) is half. By a bit more: less than half.
  all.looks[1].boxes[0].area.x += kBox.width * 0.333;
  all.looks[2].boxes[0].area.x += kBox.width * 0.34;
  const std::vector<MovingBox> moving{{0, kBox}, {1, kBox}, {2, kBox}, {3, kBox}};
  EXPECT_EQ(figures_of(all, {}, moving).kept, 2);
}

// Half of the longer side is 0.1.
TEST(TuneMovers, GetAwayByHalfTheirSize) {
  EXPECT_EQ(movers_in(moving_along({0.3, 0.35, 0.41})).size(), 1U);
  EXPECT_TRUE(movers_in(moving_along({0.3, 0.35, 0.39})).empty());
  EXPECT_TRUE(movers_in(moving_along({0.3, 0.3, 0.3, 0.3})).empty());
}

TEST(TuneMovers, GetAwayByHalfTheirWay) {
  // There and back: the way to the place 0.11 away is 0.11 + 2 * 0.06 = 0.23.
  EXPECT_TRUE(movers_in(moving_along({0.30, 0.36, 0.30, 0.36, 0.30, 0.41})).size() == 1U)
      << "its last step is far";
  EXPECT_TRUE(movers_in(moving_along({0.30, 0.39, 0.30, 0.39, 0.30, 0.39})).empty());
  EXPECT_EQ(movers_in(moving_along({0.30, 0.36, 0.34, 0.41})).size(), 1U) << "0.11 of a way of 0.15";
}

TEST(TuneMovers, AreMeasuredInTheShapeOfTheFrame) {
  Seen wide = moving_along({0.3, 0.35, 0.37});
  EXPECT_TRUE(movers_in(wide).empty()) << "0.07 of 0.1";
  wide.aspect = 2;  // 0.14 of the height, and both sides are 0.2
  EXPECT_EQ(movers_in(wide).size(), 1U);
}

// A box that grows to one side moves its centre.
TEST(TuneMovers, DoNotGrowInPlace) {
  Seen growing = moving_along({0.3, 0.3, 0.3});
  growing.looks[1].boxes[0].area.width = 0.2;
  growing.looks[2].boxes[0].area.width = 0.4;
  EXPECT_TRUE(movers_in(growing).empty()) << "0.15 of 0.4";
}

TEST(TuneMovers, HaveTwoMomentsAtLeastTwoFifthsOfASecondApart) {
  Seen quick = moving_along({0.3, 0.6});
  quick.looks[1].time = 399'000;
  EXPECT_TRUE(movers_in(quick).empty());
  quick.looks[1].time = 400'000;
  EXPECT_EQ(movers_in(quick).size(), 1U);
}

TEST(TuneMovers, LeaveAcrossTheEdgeOrNot) {
  EXPECT_FALSE(movers_in(moving_along({0.3, 0.5, 0.7})).at(0).left);
  EXPECT_TRUE(movers_in(moving_along({0.3, 0.5, 0.89})).at(0).left) << "within 0.02 of the edge";
  EXPECT_TRUE(movers_in(moving_along({0.5, 0.3, 0.01})).at(0).left);
}

TEST(TuneMovers, ArePresentInTheBoxesOfOthers) {
  Seen all = moving_along({0.3, 0.5, kNone, kNone});
  all.looks[3].boxes.push_back({kBox, 2, {1}});
  const std::vector<Mover> movers = movers_in(all);
  ASSERT_EQ(movers.size(), 1U);
  EXPECT_EQ(movers[0].id, 1);
  EXPECT_EQ(movers[0].last, 1'500'000);
}

Marks proved(const Seen& judge, const Marks& marked = {}) { return with_proofs(marked, {&judge}); }

TEST(TuneProof, QuietEndsASecondBeforeWhatMovesAndBeginsASecondAfterItLeft) {
  const Marks marks = proved(moving_along(kWalk));
  expect_spans(marks.motion, {span(3, 5)});
  expect_spans(marks.quiet, {span(0, 2), span(6, 8)});
  EXPECT_TRUE(marks.quiet_assumed);
  EXPECT_TRUE(marks.motion_assumed);
}

TEST(TuneProof, WhatDoesNotLeaveMayStandThereUntilTheEnd) {
  std::vector<double> walk = kWalk;
  walk[9] = 0.8;
  const Marks marks = proved(moving_along(walk));
  expect_spans(marks.motion, {span(3, 5)});
  expect_spans(marks.quiet, {span(0, 2)});
}

TEST(TuneProof, WhatStaysInPlaceIsNoMotion) {
  const Marks marks = proved(seen("########"));
  expect_spans(marks.quiet, {span(0, 4)});
  expect_spans(marks.motion, {});
}

TEST(TuneProof, NeedsAllJudges) {
  const Seen nothing = seen("----------------");
  const Seen walker = moving_along(kWalk);
  const Marks marks = with_proofs({}, {&nothing, &walker});
  expect_spans(marks.quiet, {span(0, 2), span(6, 8)});
  expect_spans(marks.motion, {span(3, 5)});
}

TEST(TuneProof, LeavesOutSecondsWithALightingChange) {
  const Marks marks = proved(seen("--##-L##"));
  expect_spans(marks.quiet, {span(0, 2), span(3, 4)});
}

TEST(TuneProof, KeepsMarkedSpansAndLooksForTheOtherKindElsewhere) {
  const Spans marked{{std::chrono::microseconds(0), std::chrono::microseconds(1'500'000)}};
  const Marks marks = proved(seen("------##"), {.quiet = {}, .motion = marked});
  expect_spans(marks.motion, marked);
  EXPECT_FALSE(marks.motion_assumed);
  expect_spans(marks.quiet, {span(2, 4)});
  EXPECT_TRUE(marks.quiet_assumed);
  const Marks other = proved(moving_along(kWalk), {.quiet = {span(3, 4)}, .motion = {}});
  expect_spans(other.motion, {span(4, 5)});
}

TEST(TuneProof, MovingBoxesAreThoseOfWhatMovesInTheSpans) {
  Seen all = moving_along(kWalk);
  for (Look& look : all.looks) look.boxes.push_back({kBox, 7, {}});
  const std::vector<MovingBox> boxes = moving_boxes(all, {span(3, 4)});
  ASSERT_EQ(boxes.size(), 2U);
  EXPECT_EQ(boxes[0].look, 6U);
  EXPECT_EQ(boxes[0].area.x, 0.3);
  EXPECT_EQ(boxes[1].look, 7U);
}

}  // namespace
