// What a host wrote into the engine's tables and masks counts, on frames wider than a block of 64 pixels.
#include <gtest/gtest.h>

#include <algorithm>
#include <utility>

#include "tests/support/engine_fixture.h"

namespace lm::test {
namespace {

constexpr int width = 150;
constexpr std::size_t inside = 4 * width + 70;  // (70, 4), whose neighbourhood is inside the frame

// Background pixels of value 100 over a background image of 0.
struct WideEngine : SizedEngine {
  WideEngine() : SizedEngine(width, 9, 1) {
    addFrames();
    std::fill_n(curFrame, pixels(), std::uint8_t{100});
    std::fill_n(minDist, pixels(), 0U);
  }
  [[nodiscard]] std::size_t written() const {
    return static_cast<std::size_t>(std::count(bgImg, bgImg + pixels(), 100));
  }
};

// ---- neighbours ---------------------------------------------------------------------------------

TEST(HostNeighbours, LightIsFollowedWhereTheListedNeighbourChangedToo) {
  WideEngine engine;
  engine.illumDiff[inside] = engine.illumDiff[1000] = 6;
  engine.nbrCursor[inside] = 24;
  engine.nbrIdx[inside][24] = 1000;  // (100, 6)
  EXPECT_TRUE(engine.updateModel_ncv());
  EXPECT_EQ(engine.bgImg[inside], 100);
  EXPECT_EQ(engine.bgImg[1000], 0) << "its own neighbour did not change";
  EXPECT_EQ(engine.nbrCursor[inside], 0U);
}

TEST(HostNeighbours, LightIsNotFollowedWhereTheListedNeighbourDidNotChange) {
  WideEngine engine;
  engine.illumDiff[inside] = engine.illumDiff[inside - 302] = 6;  // entry 0 of the table
  engine.nbrIdx[inside][0] = 0;
  engine.updateModel_ncv();
  EXPECT_EQ(engine.written(), 0U);
}

TEST(HostNeighbours, EntryWithoutANeighbourIsThePixelItself) {
  WideEngine engine;
  engine.illumDiff[inside] = 6;
  engine.nbrIdx[inside][0] = -1;
  engine.updateModel_ncv();
  EXPECT_EQ(engine.bgImg[inside], 100);
  EXPECT_EQ(engine.written(), 1U);
}

TEST(HostNeighbours, SeedingTakesTheListedPixels) {
  WideEngine engine;
  engine.curFrame[7] = 1;
  engine.curFrame[1349] = 2;  // the last pixel
  engine.nbrIdx[inside][0] = 7;
  engine.nbrIdx[inside][18] = 1349;
  engine.nbrIdx[inside][19] = 7;  // not reached
  EXPECT_TRUE(engine.initModel_ncv());
  const BgModel& model = engine.bgModel[inside];
  EXPECT_EQ(model.samples[0][0], 100);
  EXPECT_EQ(model.samples[1][0], 1);
  EXPECT_EQ(model.samples[2][0], 100);
  EXPECT_EQ(model.samples[19][0], 2);
}

// ---- masks --------------------------------------------------------------------------------------

// Values 2 to 254 are neither foreground nor background of an earlier frame.
TEST(OddMasks, UnchangedPixelKeepsItsValueAndLosesLife) {
  WideEngine engine;
  std::fill_n(engine.prevFgMask, engine.pixels(), std::uint8_t{0});
  std::fill_n(engine.fgLife, engine.pixels(), 3.0F);
  for (std::size_t i = 2; i < 255; ++i) engine.fgMask[i] = static_cast<std::uint8_t>(i);
  engine.fgMask[255] = 255;
  EXPECT_TRUE(engine.recogFg_ncv());
  for (std::size_t i = 2; i < 255; ++i) {
    ASSERT_EQ(engine.fgMask[i], i);
    ASSERT_EQ(engine.fgLife[i], 3.0F - 0.8F) << i;
  }
  EXPECT_EQ(engine.fgLife[255], 4.0F) << "only 255 is foreground and gains";
}

TEST(OddMasks, PixelThatWasNotZeroBeforeIsCompared) {
  WideEngine engine;  // samples of 0: nothing matches 100
  for (std::size_t i = 0; i < 256; ++i) engine.prevFgMask[i] = static_cast<std::uint8_t>(i);
  engine.recogFg_ncv();
  EXPECT_EQ(engine.fgMask[0], 0);
  EXPECT_EQ(std::count(engine.fgMask + 1, engine.fgMask + 256, 255), 255);
}

TEST(OddMasks, OnlyZeroIsBackgroundForTheUpdate) {
  WideEngine engine;
  std::fill_n(engine.illumDiff, engine.pixels(), std::uint8_t{6});
  engine.illumRatio = 1.0F;
  for (std::size_t i = 1; i < 256; ++i) engine.fgMask[i] = static_cast<std::uint8_t>(i);
  engine.updateModel_ncv();
  EXPECT_EQ(engine.bgImg[0], 100);
  EXPECT_EQ(std::count(engine.bgImg + 1, engine.bgImg + 256, 0), 255);
  EXPECT_EQ(engine.written(), engine.pixels() - 255);
  EXPECT_EQ(engine.illumRatio, 1.0F);
}

TEST(OddMasks, OnlyAbsorbMask255IsAbsorbed) {
  WideEngine engine;
  for (std::size_t i = 0; i < 256; ++i) engine.absorbMask[i] = static_cast<std::uint8_t>(i);
  engine.updateModel_ncv();
  EXPECT_EQ(engine.written(), 1U);
  EXPECT_EQ(engine.bgImg[255], 100);
  EXPECT_EQ(engine.absorbMask[255], 0);
  EXPECT_EQ(engine.absorbMask[254], 254);
}

TEST(OddMasks, EveryRegionValueButZeroIsInside) {
  WideEngine engine;
  for (std::size_t i = 0; i < 256; ++i) engine.roiMask[i] = static_cast<std::uint8_t>(i);
  engine.fgMask[0] = 9;
  engine.recogFg_ncv();
  EXPECT_EQ(engine.fgMask[0], 0);
  EXPECT_EQ(std::count(engine.fgMask + 1, engine.fgMask + 256, 255), 255);
}

// ---- differences --------------------------------------------------------------------------------

TEST(WideFrames, DifferencesAreThoseOfEveryPixel) {
  WideEngine engine;
  for (std::size_t i = 0; i < engine.pixels(); ++i) {
    engine.prevFrame[i] = static_cast<std::uint8_t>(100 + i % 13);
    engine.bgImg[i] = static_cast<std::uint8_t>(100 - i % 7);
  }
  engine.heuristic_ncv();
  for (std::size_t i = 0; i < engine.pixels(); ++i) {
    ASSERT_EQ(engine.rdDiff[i], i % 13);
    ASSERT_EQ(engine.illumDiff[i], i % 7);
  }
}

// The last product, times three channels, wraps to 1.
TEST(WideFrames, SidesBelowOneCompareNothing) {
  for (const auto& [w, h] : {std::pair{0, 9}, {width, -9}, {-1431655765, 1}}) {
    SizedEngine engine(width, 9, 3);
    engine.addFrames();
    engine.szImgX = w;
    engine.szImgY = h;
    std::fill_n(engine.rdDiff, engine.pixels(), std::uint8_t{77});
    EXPECT_FALSE(engine.heuristic_ncv());
    EXPECT_EQ(std::count(engine.rdDiff, engine.rdDiff + engine.pixels(), 77), 9 * width) << w << " x " << h;
    EXPECT_EQ(engine.diffChn, 1) << "the channel's turn is over";
  }
}

}  // namespace
}  // namespace lm::test
