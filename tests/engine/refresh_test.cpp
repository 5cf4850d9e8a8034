// The slow refresh of background that changes, and its timer.
#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

#include "tests/engine/quiet_pixel.h"

namespace lm::test {
namespace {

constexpr std::int32_t intMin = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t intMax = std::numeric_limits<std::int32_t>::max();

// ---- the timer ----------------------------------------------------------------------------------

TEST(UpdateTimer, RunsForEveryPixelInsideTheRegions) {
  QuietPixel engine;
  engine.updTimer[0] = 5;
  engine.fgMask[0] = 255;
  engine.updateModel_ncv();
  EXPECT_EQ(engine.updTimer[0], 4);
  engine.fgMask[0] = 0;
  engine.updateModel_ncv();
  EXPECT_EQ(engine.updTimer[0], 3);
  engine.absorbMask[0] = 255;
  engine.updateModel_ncv();
  EXPECT_EQ(engine.updTimer[0], 2);
}

TEST(UpdateTimer, FallsBelowZeroWhileThePixelIsForeground) {
  QuietPixel engine;
  engine.fgMask[0] = 255;
  engine.updateModel_ncv();
  engine.updateModel_ncv();
  EXPECT_EQ(engine.updTimer[0], -2);
}

TEST(UpdateTimer, IsRaisedToZeroWhereTheRefreshReadsIt) {
  QuietPixel engine;
  engine.updTimer[0] = -7;
  engine.updateModel_ncv();
  EXPECT_EQ(engine.updTimer[0], 0);
}

TEST(UpdateTimer, StaysNegativeForUnchangedBackground) {
  QuietPixel engine;
  engine.prevFgMask[0] = 0;
  engine.updTimer[0] = -7;
  engine.updateModel_ncv();
  EXPECT_EQ(engine.updTimer[0], -8);
}

TEST(UpdateTimer, WrapsBelowTheSmallestInt) {
  RefreshPixel engine;
  engine.updTimer[0] = intMin;
  engine.updateModel_ncv();
  EXPECT_EQ(engine.updTimer[0], intMax);
  EXPECT_FALSE(engine.written()) << "a long wait has begun";
}

// ---- refresh ------------------------------------------------------------------------------------

TEST(Refresh, WritesWhenTheCounterLeavesOneThenWaits) {
  RefreshPixel engine;
  engine.updateModel_ncv();
  EXPECT_TRUE(engine.written());
  EXPECT_EQ(engine.refreshCount[0], 2U);
  EXPECT_EQ(engine.updTimer[0], 15);
}

TEST(Refresh, HappensOnceIn16QualifyingFramesThenWaits) {
  OnePixel engine({100}, {7});
  engine.minDist[0] = 21;
  std::vector<int> writes;
  std::uint32_t cursor = 0;
  for (int frame = 1; frame <= 64; ++frame) {
    engine.updateModel_ncv();
    if (engine.sampleCursor[0] != cursor) {
      writes.push_back(frame);
      cursor = engine.sampleCursor[0];
    }
  }
  // The counter leaves 0 and 1 in frames 1 and 2. The timer, set to 15 by the write, ends in frame 17. The
  // counter leaves 2 to 15 in frames 17 to 30, and 0 and 1 again in frames 31 and 32; likewise in 61 and 62.
  EXPECT_EQ(writes, (std::vector<int>{2, 32, 62}));
}

TEST(Refresh, CounterCyclesFrom0To15) {
  OnePixel engine({100}, {7});
  engine.minDist[0] = 21;
  engine.refreshCount[0] = 14;
  std::vector<std::uint32_t> counts;
  for (int frame = 0; frame < 4; ++frame) {
    engine.updateModel_ncv();
    counts.push_back(engine.refreshCount[0]);
  }
  EXPECT_EQ(counts, (std::vector<std::uint32_t>{15, 0, 1, 2}));
}

TEST(Refresh, LargestCounterWraps) {
  RefreshPixel engine;
  engine.refreshCount[0] = std::numeric_limits<std::uint32_t>::max();
  engine.updateModel_ncv();
  EXPECT_EQ(engine.refreshCount[0], 0U);
  EXPECT_FALSE(engine.written());
}

TEST(Refresh, SkipsUnchangedBackground) {
  RefreshPixel engine;
  engine.prevFgMask[0] = 0;
  engine.rdDiff[0] = 10;  // thrHeuris
  engine.updateModel_ncv();
  EXPECT_FALSE(engine.written());
  EXPECT_EQ(engine.refreshCount[0], 1U);
}

TEST(Refresh, WritesBackgroundThatChangedOrWasForeground) {
  RefreshPixel changed;
  changed.prevFgMask[0] = 0;
  changed.rdDiff[0] = 11;
  changed.updateModel_ncv();
  EXPECT_TRUE(changed.written());
  RefreshPixel wasForeground;
  wasForeground.prevFgMask[0] = 255;
  wasForeground.updateModel_ncv();
  EXPECT_TRUE(wasForeground.written());
}

TEST(Refresh, WaitsForTheTimer) {
  RefreshPixel engine;
  engine.updTimer[0] = 2;
  engine.updateModel_ncv();
  EXPECT_FALSE(engine.written());
  EXPECT_EQ(engine.refreshCount[0], 1U);
  engine.updateModel_ncv();
  EXPECT_TRUE(engine.written()) << "the timer has reached 0";
}

TEST(Refresh, SkipsPixelsWhoseSamplesMatchWell) {
  RefreshPixel engine;
  engine.minDist[0] = 20;  // thrMatch
  engine.updateModel_ncv();
  EXPECT_FALSE(engine.written());
  EXPECT_EQ(engine.refreshCount[0], 1U);
}

TEST(Refresh, DistanceIsComparedAsSignedWithANegativeRadius) {
  RefreshPixel engine;
  engine.minDist[0] = 0;
  engine.thrMatch = -1;
  engine.updateModel_ncv();
  EXPECT_TRUE(engine.written());
}

// Channels differ by 20 each from two samples: background at the summed distance 60, above the radius of 20.
TEST(Refresh, ReachesColourPixelsThatMatchOnlyLoosely) {
  OnePixel engine({120, 120, 120}, {100, 100, 100});
  engine.sampleCursor[0] = 10;  // the first two slots, at which the comparison ends, stay as they are
  std::vector<int> writes;
  for (int frame = 1; frame <= 40; ++frame) {
    const std::uint32_t before = engine.sampleCursor[0];
    ASSERT_TRUE(engine.recogFg_ncv());
    ASSERT_EQ(engine.fgMask[0], 0);
    ASSERT_EQ(engine.minDist[0], 60U);
    ASSERT_TRUE(engine.updateModel_ncv());
    if (engine.sampleCursor[0] != before) {
      writes.push_back(frame);
    }
  }
  EXPECT_EQ(writes, (std::vector<int>{2, 32}));
}

}  // namespace
}  // namespace lm::test
