// How an update separates a lighting change from noise: local changes need a neighbour, scene-wide ones do
// not.
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "tests/support/engine_fixture.h"

namespace lm::test {
namespace {

// Background pixels of value 100 in a row, the background image 0; every neighbour entry is the pixel to the
// right, the last one's the first. Nothing qualifies for the refresh.
struct BackgroundRow : SizedEngine {
  explicit BackgroundRow(const Bytes& illumination)
      : SizedEngine(static_cast<int>(illumination.size()), 1, 1) {
    addFrames();
    put(illumDiff, illumination);
    std::fill_n(curFrame, pixels(), std::uint8_t{100});
    std::fill_n(minDist, pixels(), 0U);
    for (std::size_t i = 0; i < pixels(); ++i) {
      std::fill_n(nbrIdx[i], 25, static_cast<int>((i + 1) % pixels()));
    }
  }
  // '#' where the update wrote the pixel.
  [[nodiscard]] std::string written() const {
    Bytes marks;
    for (std::size_t i = 0; i < pixels(); ++i) {
      marks.push_back(bgImg[i] == 100 ? 255 : 0);
    }
    return drawing(marks, szImgX);
  }
};

TEST(Illumination, LocalChangeIsWrittenWhereTheNeighbourChangedToo) {
  BackgroundRow engine({6, 6, 6, 0});
  EXPECT_TRUE(engine.updateModel_ncv());
  EXPECT_EQ(engine.written(), picture({"##.."})) << "the third pixel's neighbour did not change";
}

TEST(Illumination, ChangeMustExceedTheThreshold) {
  BackgroundRow engine({5, 5, 6, 5});  // thrIllum 5
  engine.illumRatio = 1.0F;
  engine.updateModel_ncv();
  EXPECT_EQ(engine.written(), picture({"..#."}));
}

TEST(Illumination, NeighboursChangeMustExceedTheThresholdToo) {
  BackgroundRow engine({6, 5});
  engine.updateModel_ncv();
  EXPECT_EQ(engine.written(), picture({".."}));
}

TEST(Illumination, EveryLocalChangeAdvancesTheNeighbourCursor) {
  BackgroundRow engine({6, 6, 0});
  engine.nbrCursor[0] = 24;
  engine.nbrCursor[1] = 3;
  engine.nbrCursor[2] = 3;
  engine.updateModel_ncv();
  EXPECT_EQ(engine.nbrCursor[0], 0U) << "wraps at the list's end";
  EXPECT_EQ(engine.nbrCursor[1], 4U) << "also where the neighbour did not change";
  EXPECT_EQ(engine.nbrCursor[2], 3U);
}

TEST(Illumination, NeighbourIsTheOneUnderTheCursor) {
  BackgroundRow engine({6, 0, 6});
  engine.nbrCursor[0] = 7;
  engine.nbrIdx[0][7] = 2;
  engine.updateModel_ncv();
  EXPECT_EQ(engine.written(), picture({"#.#"}));
}

TEST(Illumination, IsolatedChangeStillQualifiesForTheRefresh) {
  BackgroundRow engine({6, 0});
  engine.minDist[0] = 21;
  engine.refreshCount[0] = 1;
  engine.updateModel_ncv();
  EXPECT_EQ(engine.written(), picture({"#."}));
  EXPECT_EQ(engine.updTimer[0], 15);
}

TEST(Illumination, ChangeWithItsNeighbourIsWrittenWithoutRefresh) {
  BackgroundRow engine({6, 6});
  std::fill_n(engine.minDist, 2, 21U);
  std::fill_n(engine.refreshCount, 2, 1U);
  engine.updateModel_ncv();
  EXPECT_EQ(engine.written(), picture({"##"}));
  EXPECT_EQ(engine.refreshCount[0], 1U);
  EXPECT_EQ(engine.updTimer[0], -1);
}

TEST(Illumination, SceneWideChangeIsWrittenAtOnceWithoutNeighbourOrRefresh) {
  BackgroundRow engine({6, 0, 6, 0});
  std::fill_n(engine.minDist, 4, 21U);
  std::fill_n(engine.refreshCount, 4, 1U);
  engine.illumRatio = 0.5F;
  put(engine.prevFgMask, Bytes{1, 0, 1, 0});  // keeps the unchanged pixels from the refresh
  engine.updateModel_ncv();
  EXPECT_EQ(engine.written(), picture({"#.#."}));
  EXPECT_EQ(engine.nbrCursor[0], 0U);
  EXPECT_EQ(engine.refreshCount[0], 1U);
}

TEST(Illumination, SceneWideBeginsAtFifteenPerCentOfThePreviousUpdate) {
  BackgroundRow below({6, 0});
  below.illumRatio = std::nextafter(0.15F, 0.0F);
  below.updateModel_ncv();
  EXPECT_EQ(below.written(), picture({".."}));
  BackgroundRow at({6, 0});
  at.illumRatio = 0.15F;
  at.updateModel_ncv();
  EXPECT_EQ(at.written(), picture({"#."}));
}

TEST(Illumination, ShareOfOneUpdateDecidesTheNext) {
  BackgroundRow engine({0, 6, 0, 6});
  engine.updateModel_ncv();
  EXPECT_EQ(engine.written(), picture({"...."})) << "local during this update";
  EXPECT_EQ(engine.illumRatio, 0.5F);
  engine.updateModel_ncv();
  EXPECT_EQ(engine.written(), picture({".#.#"}));
}

TEST(Illumination, ShareCountsExaminedBackgroundOnly) {
  BackgroundRow engine({6, 6, 6, 0, 0, 0});
  engine.roiMask[0] = 0;
  engine.fgMask[1] = 255;
  engine.absorbMask[5] = 255;
  engine.updateModel_ncv();
  EXPECT_EQ(engine.illumRatio, 1.0F / 3.0F);  // pixels 2, 3 and 4, of which pixel 2 changed
}

TEST(Illumination, ShareIsZeroWhenNothingWasExamined) {
  BackgroundRow engine({6, 6});
  engine.illumRatio = 0.5F;
  std::fill_n(engine.fgMask, 2, std::uint8_t{255});
  engine.updateModel_ncv();
  EXPECT_EQ(engine.illumRatio, 0.0F);
}

TEST(Illumination, NothingIsExaminedWhenItsHandlingIsOff) {
  BackgroundRow engine({6, 6});
  engine.illumChange = false;
  engine.illumRatio = 0.5F;
  engine.updateModel_ncv();
  EXPECT_EQ(engine.written(), picture({".."}));
  EXPECT_EQ(engine.illumRatio, 0.0F);
  EXPECT_EQ(engine.nbrCursor[0], 0U);
}

// Whether that much memory is free.
bool hasGigabytes(long gigabytes) {
  return sysconf(_SC_AVPHYS_PAGES) / 1024 * sysconf(_SC_PAGESIZE) / 1024 / 1024 >= gigabytes;
}

// 2^24 unchanged pixels and two changed ones after them, whose own neighbour is the unchanged first pixel.
// Planes that the update only reads keep sharing the system's zero page.
TEST(Illumination, CountersAre32BitFloatsThatStopAtTwoToThe24) {
  if (!hasGigabytes(4)) {
    GTEST_SKIP() << "needs 4 GB of free memory";
  }
  constexpr std::size_t count = (std::size_t{1} << 24) + 2;
  kAMBLE engine;
  engine.numPixel = static_cast<std::int32_t>(count);
  engine.frmChn = 1;
  for (std::uint8_t* kAMBLE::*plane :
       {&kAMBLE::roiMask, &kAMBLE::fgMask, &kAMBLE::prevFgMask, &kAMBLE::rdDiff, &kAMBLE::curFrame,
        &kAMBLE::absorbMask, &kAMBLE::bgImg, &kAMBLE::illumDiff}) {
    engine.*plane = static_cast<std::uint8_t*>(std::calloc(count, 1));
  }
  for (std::uint32_t* kAMBLE::*plane :
       {&kAMBLE::minDist, &kAMBLE::refreshCount, &kAMBLE::sampleCursor, &kAMBLE::nbrCursor}) {
    engine.*plane = static_cast<std::uint32_t*>(std::calloc(count, 4));
  }
  engine.updTimer = static_cast<std::int32_t*>(std::calloc(count, 4));
  engine.bgModel.resize(count);
  engine.nbrIdx.resize(count);
  std::fill_n(engine.roiMask, count, std::uint8_t{1});
  for (const std::size_t changed : {count - 2, count - 1}) {
    engine.illumDiff[changed] = 6;
    engine.nbrIdx[changed] = new int[25]();
  }
  ASSERT_TRUE(engine.updateModel_ncv());
  EXPECT_EQ(engine.illumRatio, 2.0F / 16777216.0F) << "exact counters would give 2 / 16777218";
}

}  // namespace
}  // namespace lm::test
