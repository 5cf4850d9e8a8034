// Joining boxes that are close together or overlap, and dropping small ones.
#include <gtest/gtest.h>

#include "objects/join.h"
#include "tests/objects/scene.h"

namespace lm::test {
namespace {

// The core whose box is `box`.
Rect coreOf(const Rect& box) { return {box.x + 1, box.y + 1, box.width - 2, box.height - 2}; }

// Boxes of 6 x 6 in a row, 5 pixels apart: at columns 9, 20, 31, 42, ...
struct RowOfBoxes : Scene {
  explicit RowOfBoxes(int count) : Scene(128, 32) {
    for (int i = 0; i < count; ++i) {
      paint(coreOf({9 + 11 * i, 9, 6, 6}));
    }
  }
};

// ---- gap pass -----------------------------------------------------------------------------------

TEST(GapPass, JoinsBoxesWhoseGapIsTheLimit) {
  RowOfBoxes scene(2);
  scene.thrConnect = 5.0F;
  EXPECT_EQ(scene.extract(), Boxes{box(9, 9, 18, 7)});  // 26 - 9 + 1 and 15 - 9 + 1
}

TEST(GapPass, LeavesBoxesFurtherApart) {
  RowOfBoxes scene(2);
  scene.thrConnect = 4.99F;
  EXPECT_EQ(scene.extract(), (Boxes{box(9, 9, 6, 6), box(20, 9, 6, 6)}));
}

TEST(GapPass, GapIsTruncatedBeforeItIsCompared) {
  Scene scene(64, 64);
  scene.paint({coreOf({9, 9, 6, 6}), coreOf({20, 20, 6, 6})});  // 5 and 5 apart: 7.07
  scene.thrConnect = 7.0F;
  EXPECT_EQ(scene.extract(), Boxes{box(9, 9, 18, 18)});
}

TEST(GapPass, LimitIsNotTruncated) {
  Scene scene(64, 64);
  scene.paint({coreOf({9, 9, 6, 6}), coreOf({20, 20, 6, 6})});
  scene.thrConnect = 6.99F;
  EXPECT_EQ(scene.extract().size(), 2U);
}

TEST(GapPass, ThreeInARowJoinInTwoPasses) {
  RowOfBoxes scene(3);
  scene.thrConnect = 5.0F;
  // The first pass gives 18 x 7 at (9, 9) and the box at 31; the second 37 - 9 + 1 and 16 - 9 + 1.
  EXPECT_EQ(scene.extract(), Boxes{box(9, 9, 29, 8)});
}

TEST(GapPass, JoinedBoxIsNotJoinedAgainInTheSamePass) {
  RowOfBoxes scene(4);
  scene.thrConnect = 5.0F;
  // First pass: 26 - 9 + 1 and 48 - 31 + 1 wide. Second: 49 - 9 + 1. The height grows twice, not three times
  // as if each box had been added to the first in turn.
  EXPECT_EQ(scene.extract(), Boxes{box(9, 9, 41, 8)});
}

// As with a frame whose height a host set below 0: the spans overlap in y, columns 6 and 9 are 3 apart.
TEST(GapPass, JoinsBoxesOfNegativeHeight) {
  Boxes boxes{box(5, 0, 1, -30), box(9, 0, 1, -30)};
  joinNear(boxes, 3.0F);
  EXPECT_EQ(boxes, Boxes{box(5, 0, 6, -29)});
}

TEST(GapPass, EveryJoinAddsOnePixelToWidthAndHeight) {
  for (const auto& [count, height] : {std::pair{1, 6}, {2, 7}, {4, 8}, {8, 9}}) {
    RowOfBoxes scene(count);
    scene.thrConnect = 5.0F;
    const Boxes boxes = scene.extract();
    ASSERT_EQ(boxes.size(), 1U) << count;
    EXPECT_EQ(boxes[0].height, static_cast<float>(height)) << count;
  }
}

TEST(GapPass, BoxJoinsTheFirstNearOneInListOrder) {
  Scene scene(128, 64);
  // Listed top-down: A, then B to its right, then C below A. B and C are both near A, not near each other.
  scene.paint({coreOf({20, 10, 6, 6}), coreOf({31, 11, 6, 6}), coreOf({14, 21, 6, 6})});
  scene.thrConnect = 5.0F;
  // A and B: 37 - 20 + 1 = 18 by 17 - 10 + 1 = 8 at (20, 10), which ends at row 18. C, from row 21, is 3
  // below: the union is 38 - 14 + 1 by 27 - 10 + 1 at (14, 10).
  EXPECT_EQ(scene.extract(), Boxes{box(14, 10, 25, 18)});
}

TEST(GapPass, UnionTakesThePlaceOfItsFirstBox) {
  Scene scene(128, 64);
  scene.paint({coreOf({9, 9, 6, 6}), coreOf({60, 10, 6, 6}), coreOf({20, 12, 6, 6})});
  scene.thrConnect = 5.0F;
  EXPECT_EQ(scene.extract(), (Boxes{box(9, 9, 18, 10), box(60, 10, 6, 6)}));
}

TEST(GapPass, UnpairedBoxesKeepTheirOrderAmongUnions) {
  Scene scene(128, 64);
  scene.paint({coreOf({60, 9, 6, 6}), coreOf({9, 10, 6, 6}), coreOf({20, 12, 6, 6}), coreOf({90, 13, 6, 6})});
  scene.thrConnect = 5.0F;
  EXPECT_EQ(scene.extract(), (Boxes{box(60, 9, 6, 6), box(9, 10, 18, 9), box(90, 13, 6, 6)}));
}

// ---- size filter --------------------------------------------------------------------------------

struct FilterCase {
  const char* name;
  int minWidth, minHeight;
  bool kept;  // of a box 3 wide and 40 high
};
void PrintTo(const FilterCase& filter, std::ostream* out) { *out << filter.name; }

class SizeFilter : public ::testing::TestWithParam<FilterCase> {};

TEST_P(SizeFilter, DropsBoxesBelowBothMinimaOnly) {
  Scene scene(64, 64);
  scene.paint(coreOf({20, 10, 3, 40}));
  scene.minObjWPxl = GetParam().minWidth;
  scene.minObjHPxl = GetParam().minHeight;
  EXPECT_EQ(scene.extract(), GetParam().kept ? Boxes{box(20, 10, 3, 40)} : Boxes{});
}

INSTANTIATE_TEST_SUITE_P(Join, SizeFilter,
                         ::testing::Values(FilterCase{"bothReached", 3, 40, true},      //
                                           FilterCase{"widthReached", 3, 41, true},     //
                                           FilterCase{"heightReached", 4, 40, true},    //
                                           FilterCase{"heightFarAbove", 100, 7, true},  //
                                           FilterCase{"neitherReached", 4, 41, false},  //
                                           FilterCase{"noMinima", 0, 0, true},          //
                                           FilterCase{"negativeMinima", -5, -5, true}),
                         byName);

TEST(SizeFilter, KeepsTheOrderOfTheRest) {
  Scene scene(128, 32);
  scene.paint({coreOf({9, 9, 10, 6}), coreOf({30, 9, 6, 6}), coreOf({50, 9, 12, 6})});
  scene.minObjWPxl = scene.minObjHPxl = 9;
  EXPECT_EQ(scene.extract(), (Boxes{box(9, 9, 10, 6), box(50, 9, 12, 6)}));
}

TEST(SizeFilter, ComesAfterTheGapPass) {
  RowOfBoxes scene(2);
  scene.thrConnect = 5.0F;
  scene.minObjWPxl = scene.minObjHPxl = 18;
  EXPECT_EQ(scene.extract(), Boxes{box(9, 9, 18, 7)}) << "small boxes that join are large";
}

// ---- overlap pass -------------------------------------------------------------------------------

// A ring of three pixels' width, whose box is (9, 9, 42, 42), around one block, whose box is (27, 27, 6, 6).
struct RingWithBlock : Scene {
  RingWithBlock() : Scene(64, 64) {
    fill({7, 7, 46, 46});
    fill({16, 16, 28, 28}, 0);
    paint(coreOf({27, 27, 6, 6}));
  }
};

TEST(OverlapPass, JoinsBoxesThatOverlapWhateverTheGapLimit) {
  RingWithBlock scene;
  EXPECT_EQ(scene.extract(), Boxes{box(9, 9, 43, 43)});
}

TEST(OverlapPass, ComesAfterTheSizeFilter) {
  RingWithBlock scene;
  scene.minObjWPxl = scene.minObjHPxl = 7;
  EXPECT_EQ(scene.extract(), Boxes{box(9, 9, 42, 42)}) << "the block is dropped before it can join the ring";
}

TEST(OverlapPass, LeavesBoxesApart) {
  RowOfBoxes scene(2);
  EXPECT_EQ(scene.extract().size(), 2U);
}

TEST(OverlapPass, RepeatsUntilNothingJoins) {
  RingWithBlock scene;
  scene.fill({16, 16, 28, 28}, 0);
  scene.paint({coreOf({20, 20, 4, 4}), coreOf({33, 33, 4, 4})});
  // First the ring with one block: 43 wide; then with the other: 44.
  EXPECT_EQ(scene.extract(), Boxes{box(9, 9, 44, 44)});
}

}  // namespace
}  // namespace lm::test
