// The segment of sample slots that writes skip, and its moves.
#include <gtest/gtest.h>

#include <limits>
#include <utility>

#include "tests/support/engine_fixture.h"

namespace lm::test {
namespace {

using Segment = std::pair<int, int>;

constexpr int intMax = std::numeric_limits<int>::max();
constexpr int intMin = std::numeric_limits<int>::min();

Segment segmentOf(const kAMBLE& engine) { return {engine.lockSegStart, engine.lockSegEnd}; }

struct WidthCase {
  const char* name;
  int width;
  std::vector<Segment> moves;
};
void PrintTo(const WidthCase& width, std::ostream* out) { *out << width.name; }

class LockWidth : public ::testing::TestWithParam<WidthCase> {};

TEST_P(LockWidth, MovesThroughTheSlotsAndWraps) {
  kAMBLE engine;
  engine.numSegmentLock = GetParam().width;
  EXPECT_EQ(segmentOf(engine), Segment(0, 3));
  for (const Segment& expected : GetParam().moves) {
    EXPECT_EQ(engine.updateLock(), expected.second) << "the new end is returned";
    EXPECT_EQ(segmentOf(engine), expected);
  }
}

INSTANTIATE_TEST_SUITE_P(
    Lock, LockWidth,
    ::testing::Values(WidthCase{"four", 4, {{4, 7}, {8, 11}, {12, 15}, {16, 19}, {0, 3}, {4, 7}}},
                      WidthCase{"five", 5, {{5, 9}, {10, 14}, {15, 19}, {0, 4}, {5, 9}}},
                      WidthCase{"seven", 7, {{7, 13}, {0, 6}, {7, 13}, {0, 6}}},
                      WidthCase{"one", 1, {{1, 1}, {2, 2}, {3, 3}}},  //
                      WidthCase{"ten", 10, {{10, 19}, {0, 9}, {10, 19}}},
                      WidthCase{"eleven", 11, {{0, 10}, {0, 10}}},  //
                      WidthCase{"twenty", 20, {{0, 19}, {0, 19}}},  //
                      WidthCase{"fifty", 50, {{0, 49}, {0, 49}}}),
    byName);

TEST(Lock, MovesAtCountZeroAndThenAtEveryMultipleOfThePeriod) {
  kAMBLE engine;
  engine.numPeriodLock = 3;
  std::vector<int> ends;
  for (engine.frmCount = 0; engine.frmCount < 7; ++engine.frmCount) {
    ends.push_back(engine.updateLock());
  }
  EXPECT_EQ(ends, (std::vector<int>{7, 7, 7, 11, 11, 11, 15}));
}

TEST(Lock, DefaultPeriodIsSixHundredFrames) {
  kAMBLE engine;
  engine.frmCount = 599;
  EXPECT_EQ(engine.updateLock(), 3);
  engine.frmCount = 600;
  EXPECT_EQ(engine.updateLock(), 7);
  engine.frmCount = 601;
  EXPECT_EQ(engine.updateLock(), 7);
}

TEST(Lock, CurrentEndIsReturnedWhenNothingMoves) {
  kAMBLE engine;
  engine.frmCount = 1;
  engine.lockSegEnd = 15;
  EXPECT_EQ(engine.updateLock(), 15);
  EXPECT_EQ(segmentOf(engine), Segment(0, 15));
}

TEST(Lock, PeriodBelowOneMovesNothing) {
  for (const int period : {0, -1, -600, intMin}) {
    kAMBLE engine;
    engine.numPeriodLock = period;
    EXPECT_EQ(engine.updateLock(), 3);
    EXPECT_EQ(segmentOf(engine), Segment(0, 3));
  }
}

TEST(Lock, WidestSegmentWrapsToTheStart) {
  kAMBLE engine;
  engine.numSegmentLock = intMax;
  EXPECT_EQ(engine.updateLock(), intMax - 1);
  EXPECT_EQ(segmentOf(engine), Segment(0, intMax - 1));
}

TEST(Lock, SumsBeyond32BitsWrap) {
  kAMBLE engine;
  engine.lockSegStart = 19;
  engine.numSegmentLock = intMax;
  // 19 + (2^31 - 1) wraps to 18 - 2^31; its end, 2^31 - 2 further, is 16.
  EXPECT_EQ(engine.updateLock(), 16);
  EXPECT_EQ(segmentOf(engine), Segment(intMin + 18, 16));
}

TEST(Lock, SmallestWidthWraps) {
  kAMBLE engine;
  engine.numSegmentLock = intMin;  // start -2^31; -2^31 - 2^31 wraps to 0, and one less is -1
  EXPECT_EQ(engine.updateLock(), -1);
  EXPECT_EQ(segmentOf(engine), Segment(intMin, -1));
}

TEST(Lock, WrappedFrameCounterStillFindsItsPeriods) {
  kAMBLE engine;
  engine.frmCount = -600;
  EXPECT_EQ(engine.updateLock(), 7);
  engine.frmCount = intMin;  // -2147483648 = -3579139 * 600 - 248
  EXPECT_EQ(engine.updateLock(), 7);
}

}  // namespace
}  // namespace lm::test
