// Extraction after a host changed the sides of the frame.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <string>
#include <utility>

#include "tests/objects/scene.h"
#include "tests/support/capture.h"

namespace lm::test {
namespace {

// A component of 5 x 5 pixels that begins at (20, 10): its first pixel is 10 * 64 + 20 = 660.
struct BadSides : Scene {
  BadSides(int width, int height) : Scene(64, 32) {
    paint(Rect{20, 10, 5, 5});
    szImgX = width;
    szImgY = height;
  }
  ~BadSides() { szImgY = 32; }
  BadSides(const BadSides&) = delete;
  BadSides& operator=(const BadSides&) = delete;

  Printed extractTo(Boxes& boxes) {
    return printedBy([&] { boxes = genFgObj_ncv(mask); });
  }
};

TEST(BadSides, WidthBelowOneGivesBoxesWithoutWidthAndAWarning) {
  for (const int width : {0, -64}) {
    BadSides engine(width, 32);
    Boxes boxes;
    const Printed printed = engine.extractTo(boxes);
    EXPECT_EQ(printed, (Printed{"", "Warn: invalid szImgX= " + std::to_string(width) + " \n"}));
    // Without a column row 0 is empty: the search for the bottom ends there. Counted in columns of -64 the
    // component begins above the frame, where nothing is searched.
    EXPECT_EQ(boxes, Boxes{box(0, 0, 0, width == 0 ? 1.0F / 32.0F : 1.0F)}) << width;
    EXPECT_EQ(engine.labelMap[660], 2U);
    EXPECT_EQ(engine.labelRows, nullptr);
  }
}

TEST(BadSides, HeightBelowOneGivesBoxesWithoutHeightAndAWarning) {
  for (const int height : {0, -32}) {
    BadSides engine(64, height);
    Boxes boxes;
    const Printed printed = engine.extractTo(boxes);
    EXPECT_EQ(printed, (Printed{"", "Warn: invalid szImgY= " + std::to_string(height) + " \n"}));
    // Without a row column 20 is empty: the box is that column.
    EXPECT_EQ(boxes, Boxes{box(20.0F / 64.0F, 0, 1.0F / 64.0F, 0)}) << height;
  }
}

TEST(BadSides, BothBelowOneGiveBothWarningsForEveryBox) {
  BadSides engine(-64, -32);
  engine.minObjWPxl = -64;  // or the boxes would be too small
  // Painted in columns of 64.
  engine.szImgX = 64;
  engine.paint(Rect{40, 10, 2, 2});
  engine.szImgX = -64;
  Boxes boxes;
  const Printed printed = engine.extractTo(boxes);
  const std::string one = "Warn: invalid szImgX= -64 \nWarn: invalid szImgY= -32 \n";
  EXPECT_EQ(printed, (Printed{"", one + one}));
  EXPECT_EQ(boxes, (Boxes{box(0, 0, 0, 0), box(0, 0, 0, 0)}));
}

TEST(BadSides, MaskIsCleanedAsUsual) {
  BadSides engine(0, 0);
  Boxes boxes;
  engine.extractTo(boxes);
  EXPECT_EQ(std::count(engine.mask, engine.mask + 2048, 1), 25);
  EXPECT_EQ(std::count(engine.mask, engine.mask + 2048, 0), 2023);
}

TEST(BadSides, RightSidesAgainGiveTheBoxAgain) {
  BadSides engine(0, 32);
  Boxes boxes;
  engine.extractTo(boxes);
  engine.szImgX = 64;
  engine.paint(Rect{20, 10, 5, 5});
  EXPECT_EQ(engine.extract(), Boxes{box(19, 9, 7, 7)});
}

TEST(SmallerSides, OnlyTheirRowsAreSearched) {
  Scene scene(64, 32);
  scene.paint({{20, 5, 5, 5}, {40, 24, 3, 3}});
  scene.szImgY = 16;
  // The second begins below the last row: its column 40 is empty there.
  EXPECT_EQ(scene.extract(), (Boxes{box(19, 4, 7, 7), box(40, 0, 1, 16)}));
  scene.szImgY = 32;
}

TEST(SmallerSides, RowsAreCutAtTheNewWidth) {
  Scene scene(64, 32);
  scene.paint(Rect{20, 10, 5, 5});
  scene.szImgX = 32;
  // Row y is cut into 2y and 2y + 1: the component is in rows 20, 22, 24, 26, 28, columns 20 to 24.
  EXPECT_EQ(scene.extract(), Boxes{box(19, 19, 7, 3)});
  EXPECT_EQ(scene.labelRows[20][20], 2U);
  EXPECT_EQ(scene.labelRows[21][20], 0U);
}

// A row that is missing, as after a failed allocation, is made as long as the others of the table.
TEST(SmallerSides, MissingRowIsMadeForTheWholeTable) {
  Scene scene(64, 32);
  scene.extract();
  std::free(scene.labelRows[5]);
  scene.labelRows[5] = nullptr;
  scene.szImgX = 32;
  scene.extract();
  ASSERT_NE(scene.labelRows[5], nullptr);
  scene.szImgX = 64;
  scene.paint(Rect{50, 5, 14, 1});
  EXPECT_EQ(scene.extract().size(), 1U);
  EXPECT_EQ(scene.labelRows[5][63], 2U);
}

TEST(LargerSides, GiveNothingAndLeaveTheMask) {
  for (const auto& [width, height] : {std::pair{65, 32}, {64, 33}, {65536, 65537}}) {
    Scene scene(64, 32);
    scene.paint(Rect{20, 10, 5, 5});
    scene.szImgX = width;
    scene.szImgY = height;
    EXPECT_TRUE(scene.genFgObj_ncv(scene.mask).empty());
    EXPECT_EQ(scene.mask[10 * 64 + 20], 255);
  }
}

TEST(LargerSides, NeedLabelRowsThatHoldThem) {
  Scene scene(64, 32);
  scene.extract();
  scene.paint(Rect{20, 10, 5, 5});
  for (const auto& [width, height] : {std::pair{32, 64}, {128, 16}}) {
    scene.szImgX = width;
    scene.szImgY = height;
    EXPECT_TRUE(scene.genFgObj_ncv(scene.mask).empty());
  }
  scene.szImgX = 64;
  scene.szImgY = 32;
  EXPECT_EQ(scene.extract(), Boxes{box(19, 9, 7, 7)});
}

}  // namespace
}  // namespace lm::test
