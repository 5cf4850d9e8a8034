// The life of foreground that stays still, and its absorption into the background.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "tests/support/engine_fixture.h"

namespace lm::test {
namespace {

// Foreground whatever its life: no sample matches.
struct ForegroundPixel : OnePixel {
  ForegroundPixel() : OnePixel({200}, {0}) {}
  float lifeAfter(int change, float before) {
    rdDiff[0] = static_cast<std::uint8_t>(change);
    fgLife[0] = before;
    recogFg_ncv();
    return fgLife[0];
  }
};

// Background: every sample equals the pixel.
struct BackgroundPixel : OnePixel {
  BackgroundPixel() : OnePixel({200}, {200}) {}
};

// Sets the exported bands during its lifetime.
struct Bands {
  Bands(int x2, int x3) {
    THRESH_SAME_PIXEL_x2 = x2;
    THRESH_SAME_PIXEL_x3 = x3;
  }
  ~Bands() {
    THRESH_SAME_PIXEL_x2 = 20;
    THRESH_SAME_PIXEL_x3 = 30;
  }
  Bands(const Bands&) = delete;
  Bands& operator=(const Bands&) = delete;
};

struct GainCase {
  const char* name;
  int change;
  float before, after;
};
void PrintTo(const GainCase& gain, std::ostream* out) { *out << gain.name; }

class ForegroundLife : public ::testing::TestWithParam<GainCase> {};

TEST_P(ForegroundLife, GrowsMoreForSmallerChanges) {
  ForegroundPixel engine;
  EXPECT_EQ(engine.lifeAfter(GetParam().change, GetParam().before), GetParam().after);
  EXPECT_EQ(engine.fgMask[0], 255);
}

INSTANTIATE_TEST_SUITE_P(Life, ForegroundLife,
                         ::testing::Values(GainCase{"still", 0, 0.0F, 1.0F},               //
                                           GainCase{"change10", 10, 5.0F, 6.0F},           //
                                           GainCase{"change11", 11, 5.0F, 5.5F},           //
                                           GainCase{"change20", 20, 5.0F, 5.5F},           //
                                           GainCase{"change21", 21, 0.0F, 0.2F},           //
                                           GainCase{"change30", 30, 5.0F, 5.0F + 0.2F},    //
                                           GainCase{"change31", 31, 5.0F, 5.0F - 0.8F},    //
                                           GainCase{"change255", 255, 5.0F, 5.0F - 0.8F},  //
                                           // Single precision: 0.199999988, not 0.2.
                                           GainCase{"lossFromOne", 31, 1.0F, 1.0F - 0.8F},
                                           GainCase{"noLossBelowOne", 31, std::nextafter(1.0F, 0.0F),
                                                    std::nextafter(1.0F, 0.0F)}),
                         byName);

TEST(Life, FirstBandIsTenWhateverTheFrameThreshold) {
  ForegroundPixel engine;
  engine.thrHeuris = 18;
  EXPECT_EQ(engine.lifeAfter(11, 0.0F), 0.5F);
}

TEST(Life, UpperBandsAreReadAtEveryUse) {
  ForegroundPixel engine;
  EXPECT_EQ(engine.lifeAfter(25, 0.0F), 0.2F);
  EXPECT_EQ(engine.lifeAfter(45, 5.0F), 5.0F - 0.8F);
  {
    const Bands wider(25, 45);
    EXPECT_EQ(engine.lifeAfter(25, 0.0F), 0.5F);
    EXPECT_EQ(engine.lifeAfter(45, 0.0F), 0.2F);
  }
  EXPECT_EQ(engine.lifeAfter(25, 0.0F), 0.2F);
}

TEST(Life, BandsBelowTenNeverApply) {
  const Bands lower(-1, -1);
  ForegroundPixel engine;
  EXPECT_EQ(engine.lifeAfter(10, 5.0F), 6.0F);
  EXPECT_EQ(engine.lifeAfter(11, 5.0F), 5.0F - 0.8F);
}

TEST(Life, BackgroundLosesLifeUntilItIsBelowOne) {
  BackgroundPixel engine;
  engine.fgLife[0] = 2.0F;
  engine.recogFg_ncv();
  EXPECT_EQ(engine.fgLife[0], 2.0F - 0.8F);
  engine.recogFg_ncv();
  EXPECT_EQ(engine.fgLife[0], (2.0F - 0.8F) - 0.8F);
  engine.recogFg_ncv();
  EXPECT_EQ(engine.fgLife[0], (2.0F - 0.8F) - 0.8F) << "0.4 stays";
}

TEST(Life, UnchangedBackgroundLosesLifeToo) {
  BackgroundPixel engine;
  engine.prevFgMask[0] = 0;
  engine.fgLife[0] = 5.0F;
  engine.recogFg_ncv();
  EXPECT_EQ(engine.fgLife[0], 5.0F - 0.8F);
}

TEST(Life, BackgroundThatAwaitsAbsorptionIsPinned) {
  BackgroundPixel engine;
  engine.absorbMask[0] = 255;
  engine.recogFg_ncv();
  EXPECT_EQ(engine.fgLife[0], 161.0F);
}

TEST(Life, IsUnchangedWithoutGhostSuppression) {
  ForegroundPixel foreground;
  foreground.ghostSuppression = false;
  EXPECT_EQ(foreground.lifeAfter(0, 5.0F), 5.0F);
  EXPECT_EQ(foreground.lifeAfter(31, 5.0F), 5.0F);
  BackgroundPixel background;
  background.ghostSuppression = false;
  background.fgLife[0] = 5.0F;
  background.recogFg_ncv();
  EXPECT_EQ(background.fgLife[0], 5.0F);
}

// ---- absorption ---------------------------------------------------------------------------------

TEST(Absorption, HappensWhenLifeExceedsTheLimit) {
  ForegroundPixel engine;
  engine.minDist[0] = 44;
  EXPECT_EQ(engine.lifeAfter(0, 160.5F), 161.0F) << "pinned at the limit plus one";
  EXPECT_EQ(engine.fgMask[0], 0);
  EXPECT_EQ(engine.absorbMask[0], 255);
  EXPECT_EQ(engine.minDist[0], 44U) << "the pixel is not compared";
}

TEST(Absorption, DoesNotHappenAtTheLimit) {
  ForegroundPixel engine;
  EXPECT_EQ(engine.lifeAfter(0, 160.0F), 161.0F);
  EXPECT_EQ(engine.fgMask[0], 255);
  EXPECT_EQ(engine.absorbMask[0], 0);
}

TEST(Absorption, DoesNotHappenWithoutGhostSuppression) {
  ForegroundPixel engine;
  engine.ghostSuppression = false;
  engine.lifeAfter(0, 500.0F);
  EXPECT_EQ(engine.fgMask[0], 255);
  EXPECT_EQ(engine.absorbMask[0], 0);
}

TEST(Absorption, HappensBeforeTheComparison) {
  BackgroundPixel engine;
  engine.fgLife[0] = 161.0F;
  engine.minDist[0] = 44;
  engine.recogFg_ncv();
  EXPECT_EQ(engine.absorbMask[0], 255);
  EXPECT_EQ(engine.minDist[0], 44U);
}

TEST(Absorption, DoesNotHappenForUnchangedBackground) {
  BackgroundPixel engine;
  engine.prevFgMask[0] = 0;
  engine.fgLife[0] = 161.0F;
  engine.recogFg_ncv();
  EXPECT_EQ(engine.absorbMask[0], 0);
  EXPECT_EQ(engine.fgLife[0], 161.0F - 0.8F);
}

TEST(Absorption, HappensAtOnceWithANegativeLimit) {
  ForegroundPixel engine;
  engine.lifeStaticFrm = -60;
  EXPECT_EQ(engine.lifeAfter(0, 0.0F), -59.0F);
  EXPECT_EQ(engine.fgMask[0], 0);
  EXPECT_EQ(engine.absorbMask[0], 255);
}

TEST(Absorption, LargestLimitWrapsWhenOneIsAdded) {
  ForegroundPixel engine;
  engine.lifeStaticFrm = std::numeric_limits<std::int32_t>::max();
  EXPECT_EQ(engine.lifeAfter(0, 3e9F), -2147483648.0F);
  EXPECT_EQ(engine.absorbMask[0], 255);
}

// A car parks on a grey background of 50. The limit is 3; timestamps 1 ms apart do not change it.
TEST(Absorption, ParkedObjectLeavesTheMaskAndEntersModelAndBackground) {
  kAMBLE engine;
  put(engine.roiMask, Bytes{1});
  const std::uint8_t background = 50;
  const std::uint8_t car = 200;
  engine.lifeStaticFrm = 3;
  std::vector<int> masks;
  std::vector<float> lives;
  for (int frame = 0; frame < 9; ++frame) {
    engine.curTimestamp = 1000 + frame;
    ASSERT_TRUE(engine.learnBg_ncv(frame == 0 ? &background : &car, 1, 1, 1));
    masks.push_back(engine.fgMask[0]);
    lives.push_back(engine.fgLife[0]);
  }
  // Frame 1 changes by 150 and gains nothing; frames 2 to 5 gain one each; at frame 6 the life of 4
  // exceeds 3.
  EXPECT_EQ(masks, (std::vector<int>{0, 255, 255, 255, 255, 255, 0, 0, 0}));
  EXPECT_EQ(lives, (std::vector<float>{0, 0, 1, 2, 3, 4, 4, 4.0F - 0.8F, 4.0F - 0.8F - 0.8F}));
  EXPECT_EQ(engine.bgImg[0], car);
  EXPECT_EQ(engine.bgModel[0].samples[0][0], car);
  EXPECT_EQ(engine.bgModel[0].samples[1][0], background);
  EXPECT_EQ(engine.absorbMask[0], 0);
}

}  // namespace
}  // namespace lm::test
