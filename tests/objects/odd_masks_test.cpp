// Frames wider than a block of 64 pixels, and masks with values that the model never makes.
#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>

#include "objects/component.h"
#include "tests/objects/scene.h"

namespace lm::test {
namespace {

struct WideMask : Scene {
  WideMask(int width, int height) : Scene(width, height) {}

  // Whether the pixels of `area` hold `value`, and no others do.
  [[nodiscard]] ::testing::AssertionResult holdsExactly(const Rect& area, std::uint8_t value) const {
    for (int pixel = 0; pixel < numPixel; ++pixel) {
      const int x = pixel % szImgX;
      const int y = pixel / szImgX;
      const bool inside = x >= area.x && x < area.x + area.width && y >= area.y && y < area.y + area.height;
      if (inside != (mask[pixel] == value)) {
        return ::testing::AssertionFailure() << "(" << x << ", " << y << ") holds " << +mask[pixel];
      }
    }
    return ::testing::AssertionSuccess();
  }
};

TEST(WideMasks, LayersArePeeledAcrossBlocks) {
  WideMask engine(200, 20);
  engine.fill({50, 2, 100, 16}, 1);  // columns 50 to 149, across the blocks at 64 and 128
  ASSERT_EQ(engine.erode_ncv_fast(engine.mask, 1, 0, 1), 1);
  EXPECT_TRUE(engine.holdsExactly({51, 3, 98, 14}, 1));
  engine.erode_ncv_fast(engine.mask, 1, 0, 2);
  EXPECT_TRUE(engine.holdsExactly({53, 5, 94, 10}, 1));
  EXPECT_EQ(engine.morphList.size(), 2U * 96 + 2 * 10) << "the ring of the last pass: 96 x 12 less 94 x 10";
}

TEST(WideMasks, RegionThatEndsAtABlockIsPeeledThere) {
  for (const int begin : {63, 64, 65}) {
    WideMask engine(130, 9);
    engine.fill({begin, 0, 130 - begin, 9}, 1);
    engine.erode_ncv_fast(engine.mask, 1, 0, 2);
    EXPECT_TRUE(engine.holdsExactly({begin + 2, 0, 128 - begin, 9}, 1)) << begin;
  }
}

TEST(WideMasks, ComponentsAndBoxesCrossBlocks) {
  Scene scene(256, 32);
  scene.paint({{60, 10, 10, 2}, {127, 10, 1, 1}, {128, 20, 60, 3}});
  EXPECT_EQ(scene.extract(), (Boxes{box(59, 9, 12, 4), box(126, 9, 3, 3), box(127, 19, 62, 5)}));
  EXPECT_EQ(scene.labelRows[10][69], 2U);
  EXPECT_EQ(scene.labelRows[10][127], 3U);
  EXPECT_EQ(scene.labelRows[22][187], 4U);
}

// Every value from 2 to 254 beside foreground: they neither erode it nor become it.
TEST(OddMasks, OtherValuesKeepTheirsAndDoNotErode) {
  Scene scene(256, 3);
  scene.fill({0, 1, 256, 1});
  for (const std::ptrdiff_t begin : {0, 512}) {
    std::iota(scene.mask + begin, scene.mask + begin + 253, std::uint8_t{2});
    std::fill_n(scene.mask + begin + 253, 3, std::uint8_t{100});
  }
  EXPECT_EQ(scene.genFgObj_ncv(scene.mask).size(), 1U);
  for (int x = 0; x < 253; ++x) {
    ASSERT_EQ(scene.mask[x], x + 2);
    ASSERT_EQ(scene.mask[256 + x], 1) << "column " << x;
    ASSERT_EQ(scene.mask[512 + x], x + 2);
    ASSERT_EQ(scene.labelMap[x], static_cast<std::uint32_t>(x + 2)) << "widened, not labelled";
    ASSERT_EQ(scene.labelMap[256 + x], 2U);
  }
}

TEST(OddMasks, OtherValuesShieldFromClearedPixelsUntilForegroundBesideThemIsGone) {
  Scene scene(70, 12);
  scene.fill({30, 0, 10, 12}, 7);
  scene.fill({33, 0, 4, 12});   // four columns of foreground between two stripes of 7
  scene.mask[5 * 70 + 32] = 0;  // a gap in the left stripe
  scene.genFgObj_ncv(scene.mask);
  // Three layers around (32, 5) in the four columns: 1 + 3 + 5 pixels.
  EXPECT_EQ(std::count(scene.mask, scene.mask + 840, 1), 48 - 9);
  // Columns 30 to 39 of the rows 2 to 5.
  EXPECT_EQ(drawing(scene.mask + 170, 10, 10), picture({"7771111777"}));
  EXPECT_EQ(drawing(scene.mask + 240, 10, 10), picture({"777.111777"}));
  EXPECT_EQ(drawing(scene.mask + 310, 10, 10), picture({"777..11777"}));
  EXPECT_EQ(drawing(scene.mask + 380, 10, 10), picture({"77....1777"}));
}

TEST(OddMasks, OnesCountAsForegroundBesideForeground) {
  Scene scene(130, 12);
  scene.fill({60, 1, 5, 10}, 1);
  scene.fill({65, 1, 5, 10}, 255);
  EXPECT_EQ(scene.extract(), Boxes{box(62, 3, 6, 6)});  // columns 63 to 66, rows 4 to 7 remain
}

}  // namespace
}  // namespace lm::test
