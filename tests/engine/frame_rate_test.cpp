// The frame-rate estimate: raw and gated from timestamps, smoothed and clamped from the wall clock.
#include <gtest/gtest.h>

#include <cstdint>
#include <ctime>
#include <limits>

#include "tests/engine/scripted_clock.h"
#include "tests/support/engine_fixture.h"

namespace lm::test {
namespace {

constexpr std::int32_t outOfRange = std::numeric_limits<std::int32_t>::min();

void estimateAt(kAMBLE& engine, std::int64_t timestamp) {
  engine.curTimestamp = timestamp;
  engine.estFrameRate();
}

TEST(TimestampRate, FirstTimestampIsOnlyStored) {
  kAMBLE engine;
  estimateAt(engine, 1000);
  EXPECT_EQ(engine.prevTimestamp, 1000);
  EXPECT_EQ(engine.frmRate, 30.0);
  EXPECT_EQ(engine.lifeStaticFrm, 160);
}

struct StepCase {
  const char* name;
  std::int64_t step;  // milliseconds between two frames
  double rate;
  std::int32_t life;  // with lifeStatic 3; 160 is the untouched default
};
void PrintTo(const StepCase& step, std::ostream* out) { *out << step.name; }

class TimestampStep : public ::testing::TestWithParam<StepCase> {};

TEST_P(TimestampStep, GivesTheRawRateAndSetsLifeOnlyFrom3To40) {
  kAMBLE engine;
  estimateAt(engine, 1000);
  estimateAt(engine, 1000 + GetParam().step);
  EXPECT_EQ(engine.frmRate, GetParam().rate);
  EXPECT_EQ(engine.lifeStaticFrm, GetParam().life);
  EXPECT_EQ(engine.prevTimestamp, 1000 + GetParam().step);
}

INSTANTIATE_TEST_SUITE_P(TimestampRate, TimestampStep,
                         ::testing::Values(StepCase{"ms40", 40, 25.0, 75},         //
                                           StepCase{"ms33", 33, 1.0 / 0.033, 90},  // 90.9 truncated
                                           StepCase{"ms25_is40", 25, 40.0, 120},   //
                                           StepCase{"ms24_above40", 24, 1.0 / 0.024, 160},
                                           StepCase{"ms10", 10, 100.0, 160},        //
                                           StepCase{"ms333", 333, 1.0 / 0.333, 9},  // 3.003
                                           StepCase{"ms334_below3", 334, 1.0 / 0.334, 160},
                                           StepCase{"equal", 0, 0.0, 160},  //
                                           StepCase{"backward", -200, 0.0, 160}),
                         byName);

TEST(TimestampRate, AfterAStepBackTheNextStepIsMeasuredFromThere) {
  kAMBLE engine;
  estimateAt(engine, 5000);
  estimateAt(engine, 1000);
  estimateAt(engine, 1040);
  EXPECT_EQ(engine.frmRate, 25.0);
  EXPECT_EQ(engine.lifeStaticFrm, 75);
}

TEST(TimestampRate, DifferenceBeyond64BitsWraps) {
  kAMBLE engine;
  engine.prevTimestamp = std::numeric_limits<std::int64_t>::min();
  estimateAt(engine, 1);  // 1 + 2^63 wraps to a negative difference
  EXPECT_EQ(engine.frmRate, 0.0);
}

TEST(TimestampRate, LifeOutOfIntRangeIsTheSmallestInt) {
  kAMBLE engine;
  engine.lifeStatic = std::numeric_limits<std::int32_t>::max();
  estimateAt(engine, 1000);
  estimateAt(engine, 1040);
  EXPECT_EQ(engine.lifeStaticFrm, outOfRange);
}

TEST(TimestampRate, NegativeLifeIsTruncatedTowardZero) {
  kAMBLE engine;
  engine.lifeStatic = -3;
  estimateAt(engine, 1000);
  estimateAt(engine, 1033);  // -90.9
  EXPECT_EQ(engine.lifeStaticFrm, -90);
}

TEST(TimestampRate, LeavesTheWallClockFieldsUnchanged) {
  const ScriptedClock clock({{100, 0}});
  kAMBLE engine;
  estimateAt(engine, 1000);
  estimateAt(engine, 1040);
  EXPECT_EQ(engine.curTime.tv_sec, 0);
  EXPECT_EQ(engine.elapsedUs, 0);
}

// One estimate per scripted time, without timestamps.
struct ClockedEngine : kAMBLE {
  explicit ClockedEngine(std::vector<timeval> times) : clock(std::move(times)) {}
  void estimate(int frames) {
    for (int i = 0; i < frames; ++i) {
      estFrameRate();
    }
  }
  ScriptedClock clock;
};

TEST(WallClockRate, FirstSampleIsTheTimeSinceTheEpochAndCountsAsThree) {
  ClockedEngine engine({{1700000000, 250000}});
  engine.estimate(1);
  EXPECT_EQ(engine.elapsedUs, 1700000000250000);
  EXPECT_EQ(engine.frmRate, 0.99 * 30.0 + 0.03);  // 29.73
  EXPECT_EQ(engine.lifeStaticFrm, 89);            // 3 * 29.73 = 89.19
}

TEST(WallClockRate, StoresTheTimeOfTheFrame) {
  ClockedEngine engine({{100, 7}, {100, 40007}});
  engine.estimate(2);
  EXPECT_EQ(engine.curTime.tv_sec, 100);
  EXPECT_EQ(engine.curTime.tv_usec, 40007);
  EXPECT_EQ(engine.prevTime.tv_sec, 100);
  EXPECT_EQ(engine.prevTime.tv_usec, 40007);
  EXPECT_EQ(engine.elapsedUs, 40000);
}

struct ClockCase {
  const char* name;
  timeval second;  // the first frame is at 100 s
  double increment;
};
void PrintTo(const ClockCase& sample, std::ostream* out) { *out << sample.name; }

class WallClockSample : public ::testing::TestWithParam<ClockCase> {};

TEST_P(WallClockSample, MovesTheRateByOnePerCent) {
  ClockedEngine engine({{100, 0}, GetParam().second});
  engine.estimate(1);
  const double before = engine.frmRate;
  engine.estimate(1);
  EXPECT_EQ(engine.frmRate, 0.99 * before + GetParam().increment);
}

INSTANTIATE_TEST_SUITE_P(WallClockRate, WallClockSample,
                         ::testing::Values(ClockCase{"ms40", {100, 40000}, 0.01 * 25.0},
                                           ClockCase{"ms30", {100, 30000}, 0.01 * (1.0 / 0.03)},
                                           ClockCase{"ms25_is40", {100, 25000}, 0.4},
                                           ClockCase{"ms1_above40", {100, 1000}, 0.4},
                                           ClockCase{"noTimeElapsed", {100, 0}, 0.4},
                                           ClockCase{"s2_below3", {102, 0}, 0.03},
                                           // A negative interval is converted to unsigned: a very long one.
                                           ClockCase{"backward", {99, 0}, 0.03}),
                         byName);

TEST(WallClockRate, ElapsedTimeBorrowsFromTheSeconds) {
  ClockedEngine engine({{100, 900000}, {101, 100000}});
  engine.estimate(2);
  EXPECT_EQ(engine.elapsedUs, 200000);
  EXPECT_EQ(engine.frmRate, 0.99 * (0.99 * 30.0 + 0.03) + 0.01 * 5.0);
}

TEST(WallClockRate, BackwardClockStoresTheSignedDifference) {
  ClockedEngine engine({{100, 0}, {99, 0}});
  engine.estimate(2);
  EXPECT_EQ(engine.elapsedUs, -1000000);
}

TEST(WallClockRate, DifferenceBeyond64BitsWraps) {
  if (sizeof(std::time_t) < sizeof(std::int64_t)) GTEST_SKIP() << "seconds have 32 bits";
  ClockedEngine engine({{std::numeric_limits<std::time_t>::max(), 0}});
  engine.estimate(1);
  EXPECT_EQ(engine.elapsedUs, -1000000);  // (2^63 - 1) * 10^6 modulo 2^64
}

TEST(WallClockRate, LifeIsUpdatedOnEveryFrame) {
  ClockedEngine engine({{100, 0}, {100, 1000}, {100, 2000}});
  engine.estimate(2);
  EXPECT_EQ(engine.lifeStaticFrm, 89);  // 0.99 * 29.73 + 0.4 = 29.8327; times 3 is 89.498
  engine.lifeStaticFrm = 7;
  engine.estimate(1);
  EXPECT_EQ(engine.lifeStaticFrm, 89);  // 29.9344; 89.80
}

TEST(WallClockRate, IsUsedForTimestampZeroAndForUnknownTimes) {
  for (const std::int64_t timestamp : {0, -1}) {
    ClockedEngine engine({{100, 0}});
    engine.prevTimestamp = 500;
    estimateAt(engine, timestamp);
    EXPECT_EQ(engine.frmRate, 0.99 * 30.0 + 0.03);
    EXPECT_EQ(engine.curTime.tv_sec, 100);
    EXPECT_EQ(engine.prevTimestamp, 500) << "the previous timestamp stays";
  }
}

TEST(WallClockRate, IsNotUsedFromTimestampOne) {
  ClockedEngine engine({{100, 0}});
  estimateAt(engine, 1);
  EXPECT_EQ(engine.frmRate, 30.0);
  EXPECT_EQ(engine.curTime.tv_sec, 0);
}

}  // namespace
}  // namespace lm::test
