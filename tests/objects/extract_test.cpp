// From the foreground mask to boxes: cleaning, pruning, labels, thresholds, fractions.
#include <gtest/gtest.h>

#include <algorithm>

#include "objects/join.h"
#include "tests/objects/scene.h"
#include "tests/support/capture.h"

namespace lm::test {
namespace {

TEST(Extract, EmptyMaskGivesNoBox) {
  Scene scene(64, 32);
  EXPECT_EQ(scene.extract(), Boxes{});
}

TEST(Extract, BoxIsTheRegionLessThreeLayersPlusAMarginOfOne) {
  Scene scene(64, 32);
  scene.fill({10, 8, 12, 9});                            // columns 10 to 21, rows 8 to 16
  EXPECT_EQ(scene.extract(), Boxes{box(12, 10, 8, 5)});  // remain columns 13 to 18, rows 11 to 13
}

TEST(Extract, RegionSixPixelsWideVanishes) {
  Scene scene(64, 32);
  scene.fill({10, 4, 6, 20});
  EXPECT_EQ(scene.extract(), Boxes{});
}

TEST(Extract, FrameEdgeDoesNotErode) {
  Scene scene(64, 32);
  scene.fill({0, 0, 10, 8});
  EXPECT_EQ(scene.extract(), Boxes{box(0, 0, 8, 6)});  // columns 0 to 6, rows 0 to 4
}

TEST(Extract, BoxAtTheFarBordersReachesPastTheFrame) {
  Scene scene(64, 32);
  scene.fill({50, 20, 14, 12});                            // columns 53 to 63, rows 23 to 31 remain
  EXPECT_EQ(scene.extract(), Boxes{box(52, 22, 64, 32)});  // the border gives the whole frame's sides
}

TEST(Extract, BoxesAreFractionsOfTheFrame) {
  Scene scene(64, 32);
  scene.paint(Rect{9, 5, 6, 6});  // box (8, 4, 8, 8)
  EXPECT_EQ(scene.genFgObj_ncv(scene.mask), Boxes{box(0.125F, 0.125F, 0.125F, 0.25F)});
}

TEST(Extract, BoxesComeInRasterOrderOfTheirFirstPixels) {
  Scene scene(64, 32);
  scene.paint({{40, 5, 2, 2}, {10, 5, 2, 2}, {25, 4, 2, 2}, {25, 20, 2, 2}});
  EXPECT_EQ(scene.extract(), (Boxes{box(24, 3, 4, 4), box(9, 4, 4, 4), box(39, 4, 4, 4), box(24, 19, 4, 4)}));
}

TEST(Extract, MaskIsLeftCleanedWithForegroundOne) {
  Scene scene(16, 16);
  scene.fill({4, 4, 8, 8});
  scene.extract();
  EXPECT_EQ(std::count(scene.mask, scene.mask + 256, 1), 4);
  EXPECT_EQ(std::count(scene.mask, scene.mask + 256, 0), 252);
  EXPECT_EQ(scene.mask[7 * 16 + 7], 1);
}

TEST(Extract, OnesInTheMaskCountAsForeground) {
  Scene scene(64, 32);
  scene.fill({10, 8, 12, 9}, 1);
  EXPECT_EQ(scene.extract(), Boxes{box(12, 10, 8, 5)});
}

// ---- component size -----------------------------------------------------------------------------

TEST(Extract, ComponentNeedsTheWorkingMinimumOfPixels) {
  for (const auto& [minimum, boxes] : {std::pair{25, 1U}, {26, 0U}}) {
    Scene scene(64, 32);
    scene.paint(Rect{20, 10, 5, 5});
    scene.thrCcPxl2 = minimum;
    EXPECT_EQ(scene.extract().size(), boxes) << "minimum " << minimum;
  }
}

TEST(Extract, ConfiguredMinimumAloneDoesNotCount) {
  Scene scene(64, 32);
  scene.paint(Rect{20, 10, 5, 5});
  scene.thrCcPxl = 1000;
  EXPECT_EQ(scene.extract().size(), 1U);
}

// ---- pruning ------------------------------------------------------------------------------------

TEST(Extract, WholeBlocksOutsideTheRegionsAreNotPruned) {
  Scene scene(64, 32);  // 2048 pixels: no tail
  std::fill_n(scene.roiMask, 2048, std::uint8_t{0});
  scene.paint(Rect{20, 10, 5, 5});
  EXPECT_EQ(scene.extract(), Boxes{box(19, 9, 7, 7)});
}

// 441 pixels: the last 9 are after the last whole block of 16 and of 32 alike. They are tested against the
// region mask's first bytes, not against their own.
TEST(Extract, TailIsPrunedByTheStartOfTheRegionMask) {
  Scene scene(21, 21);
  std::fill_n(scene.roiMask, 32, std::uint8_t{0});
  scene.fill({0, 10, 21, 11});  // rows 13 to 20 remain, pixels 273 to 440
  scene.extract();
  EXPECT_TRUE(std::all_of(scene.mask + 432, scene.mask + 441, [](int byte) { return byte == 0; }));
  EXPECT_TRUE(std::all_of(scene.mask + 273, scene.mask + 416, [](int byte) { return byte == 1; }));
}

TEST(Extract, TailIsKeptWhereTheRegionMaskStartsInside) {
  Scene scene(21, 21);
  std::fill(scene.roiMask + 32, scene.roiMask + 441, std::uint8_t{0});
  scene.fill({0, 10, 21, 11});
  scene.extract();
  EXPECT_TRUE(std::all_of(scene.mask + 273, scene.mask + 441, [](int byte) { return byte == 1; }));
}

// ---- label buffers ------------------------------------------------------------------------------

TEST(Extract, LabelBuffersAreMadeOnceAlignedAndHoldTheLabels) {
  Scene scene(64, 32);
  scene.paint({{10, 10, 2, 2}, {30, 10, 3, 3}});
  scene.extract();
  ASSERT_NE(scene.labelMap, nullptr);
  ASSERT_NE(scene.labelRows, nullptr);
  EXPECT_EQ(scene.labelMap[10 * 64 + 10], 2U);
  EXPECT_EQ(scene.labelMap[11 * 64 + 31], 3U);
  EXPECT_EQ(scene.labelMap[0], 0U);
  EXPECT_EQ(reinterpret_cast<std::uintptr_t>(scene.labelMap) % 32, 0U);
  for (std::ptrdiff_t y = 0; y < 32; ++y) {
    const std::uint32_t* row = scene.labelRows[y];
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(row) % 32, 0U) << "row " << y;
    EXPECT_TRUE(std::equal(row, row + 64, scene.labelMap + y * 64)) << "row " << y;
  }
  const std::uint32_t* const map = scene.labelMap;
  const std::uint32_t* const row = scene.labelRows[5];
  scene.extract();
  EXPECT_EQ(scene.labelMap, map);
  EXPECT_EQ(scene.labelRows[5], row);
}

TEST(Extract, LabelsOfThePreviousFrameAreCleared) {
  Scene scene(64, 32);
  scene.paint(Rect{10, 10, 2, 2});
  scene.extract();
  scene.fill({0, 0, 64, 32}, 0);
  scene.paint(Rect{40, 10, 2, 2});
  EXPECT_EQ(scene.extract(), Boxes{box(39, 9, 4, 4)});
  EXPECT_EQ(scene.labelRows[10][10], 0U);
}

// ---- names --------------------------------------------------------------------------------------

TEST(Extract, BoxesCarryNoRegionNames) {
  Scene scene(64, 32);
  scene.roiInclude = {polygon{"everywhere", {}, new std::uint8_t[2048]}};
  std::fill_n(scene.roiInclude[0].mask, 2048, std::uint8_t{1});
  scene.paint(Rect{20, 5, 20, 20});
  const Boxes boxes = scene.extract();
  ASSERT_EQ(boxes.size(), 1U);
  EXPECT_TRUE(boxes[0].names.empty()) << "foreground is 1 by then, and naming requires 255";
}

// ---- fractions of an invalid frame --------------------------------------------------------------

TEST(Fractions, SideBelowOneGivesZeroAndAWarningForEveryBox) {
  Boxes boxes{box(1, 2, 3, 4), box(5, 6, 7, 8)};
  const Printed printed = printedBy([&] { toFractions(boxes, 0, 8); });
  EXPECT_EQ(boxes, (Boxes{box(0, 0.25F, 0, 0.5F), box(0, 0.75F, 0, 1)}));
  EXPECT_EQ(printed, (Printed{"", "Warn: invalid szImgX= 0 \nWarn: invalid szImgX= 0 \n"}));
}

TEST(Fractions, BothSidesWarnWidthFirst) {
  Boxes boxes{box(1, 2, 3, 4)};
  const Printed printed = printedBy([&] { toFractions(boxes, -5, -1); });
  EXPECT_EQ(boxes, Boxes{box(0, 0, 0, 0)});
  EXPECT_EQ(printed, (Printed{"", "Warn: invalid szImgX= -5 \nWarn: invalid szImgY= -1 \n"}));
}

// ---- missing planes -----------------------------------------------------------------------------

TEST(Extract, MissingMaskGivesNothing) {
  Scene scene(64, 32);
  EXPECT_TRUE(scene.genFgObj_ncv(nullptr).empty());
}

TEST(Extract, MissingRegionMaskGivesNothing) {
  Scene scene(64, 32);
  scene.paint(Rect{20, 10, 5, 5});
  dropPlane<&kAMBLE::roiMask>(scene);
  EXPECT_TRUE(scene.extract().empty());
}

TEST(Extract, EngineThatWasNeverSizedGivesNothing) {
  kAMBLE engine;
  Bytes mask(4, 255);
  EXPECT_TRUE(engine.genFgObj_ncv(mask.data()).empty());
}

}  // namespace
}  // namespace lm::test
