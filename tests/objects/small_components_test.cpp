// The adaptive minimum component size.
#include <gtest/gtest.h>

#include <limits>

#include "tests/objects/scene.h"

namespace lm::test {
namespace {

// Pieces of 2 x 2 pixels, given by their first pixels, below a minimum of 25.
struct Pieces : Scene {
  explicit Pieces(const std::vector<pnt>& firsts, int width = 128, int height = 64) : Scene(width, height) {
    autoSensitivity = true;
    thrCcPxl = thrCcPxl2 = 25;
    for (const pnt& first : firsts) {
      paint(Rect{first.x, first.y, 2, 2});
    }
  }
  void expectAfter(int working, int hold) {
    EXPECT_TRUE(extract().empty());
    EXPECT_EQ(thrCcPxl2, working);
    EXPECT_EQ(holdCcPxl, hold);
  }
};

// Two pieces 20 apart, each 10 from their centre: within a quarter of 128 and within 0.75 * 20.
const std::vector<pnt> near{{50, 20}, {70, 20}};

// ---- lowering -----------------------------------------------------------------------------------

TEST(SmallComponents, CloseTogetherQuarterTheMinimumAndHoldIt) {
  Pieces scene(near);
  scene.expectAfter(6, 3);  // 6.25
}

TEST(SmallComponents, MinimumNeverFallsBelowOne) {
  Pieces scene({});
  scene.thrCcPxl = scene.thrCcPxl2 = 3;  // 0.75
  scene.paint({{50, 20, 1, 1}, {70, 20, 1, 1}});
  scene.expectAfter(1, 3);
}

TEST(SmallComponents, CountAsObjectsInTheNextFrame) {
  Pieces scene({});
  const std::vector<Rect> cores{{50, 20, 3, 2}, {70, 20, 3, 2}};  // 6 pixels each
  scene.paint(cores);
  EXPECT_TRUE(scene.extract().empty());
  scene.fill({0, 0, 128, 64}, 0);
  scene.paint(cores);
  EXPECT_EQ(scene.extract(), (Boxes{box(49, 19, 5, 4), box(69, 19, 5, 4)}));
}

TEST(SmallComponents, AreIgnoredWithoutAutoSensitivity) {
  Pieces scene(near);
  scene.autoSensitivity = false;
  scene.holdCcPxl = 2;
  scene.expectAfter(25, 2);
}

TEST(SmallComponents, RestartARunningHold) {
  Pieces scene(near);
  scene.holdCcPxl = 1;
  scene.expectAfter(6, 3);
}

// ---- scattered ----------------------------------------------------------------------------------

struct SpreadCase {
  const char* name;
  std::vector<pnt> firsts;
  bool lowered;
};
void PrintTo(const SpreadCase& spread, std::ostream* out) { *out << spread.name; }

class Spread : public ::testing::TestWithParam<SpreadCase> {};

TEST_P(Spread, LowersTheMinimumOrOnlyCountsTheHoldDown) {
  Pieces scene(GetParam().firsts, 512, 128);  // a quarter of the width is 128
  scene.holdCcPxl = 2;
  GetParam().lowered ? scene.expectAfter(6, 3) : scene.expectAfter(25, 1);
}

INSTANTIATE_TEST_SUITE_P(
    SmallComponents, Spread,
    ::testing::Values(
        SpreadCase{"quarterOfTheWidthIsClose", {{100, 20}, {356, 20}}, true},   // 128 from the centre
        SpreadCase{"aboveAQuarterIsScattered", {{100, 20}, {358, 20}}, false},  // 129
        SpreadCase{"distanceIsTruncated", {{100, 20}, {357, 20}}, true},        // 128.5
        SpreadCase{"heightCountsToo", {{100, 20}, {356, 60}}, false},           // sqrt(128^2 + 20^2) = 129.55
        // Centre (124, 45); the far piece is 76 from it. The largest distance between two pieces is that of
        // (100, 40) to (200, 45), 100.1, and 76 is above 0.75 * 100.
        SpreadCase{"oneFarOut", {{100, 40}, {110, 40}, {100, 50}, {110, 50}, {200, 45}}, false},
        // Centre (125, 45), the far piece 75 from it.
        SpreadCase{"oneAtTheLimit", {{100, 40}, {110, 40}, {100, 50}, {115, 50}, {200, 45}}, true}),
    byName);

TEST(SmallComponents, HoldDoesNotFallBelowZero) {
  Pieces scattered({{100, 20}, {400, 20}}, 512, 64);
  scattered.expectAfter(25, 0);
  Pieces farOut({{100, 40}, {110, 40}, {100, 50}, {110, 50}, {200, 45}}, 512, 128);
  farOut.expectAfter(25, 0);
}

TEST(SmallComponents, PositionIsTheFirstPixelNotTheBox) {
  Pieces scene({{94, 20}});
  scene.thrCcPxl = scene.thrCcPxl2 = 1000;
  // A piece whose first pixel is in column 40 and whose box starts in column 20. Column 40 is close to 94: 27
  // from the centre, below a quarter of 128. Column 20 would be 37 from it.
  scene.paint({{40, 20, 2, 2}, {20, 22, 22, 2}});
  scene.expectAfter(250, 3);
}

// ---- rising again -------------------------------------------------------------------------------

TEST(SmallComponents, MinimumRisesByDoublingAfterTheHold) {
  Pieces scene({});
  scene.thrCcPxl2 = 6;
  scene.holdCcPxl = 3;
  scene.expectAfter(6, 2);
  scene.expectAfter(6, 1);
  scene.expectAfter(6, 0);
  scene.expectAfter(12, 0);
  scene.expectAfter(24, 0);
  scene.expectAfter(25, 0);
  scene.expectAfter(25, 0);
}

TEST(SmallComponents, HoldCountsDownAtTheConfiguredMinimumToo) {
  Pieces scene({});
  scene.holdCcPxl = 2;
  scene.expectAfter(25, 1);
  scene.expectAfter(25, 0);
  scene.expectAfter(25, 0);
}

TEST(SmallComponents, SinglePieceIsNotJudged) {
  Pieces scene({{50, 20}});
  scene.thrCcPxl2 = 6;
  scene.expectAfter(12, 0);
}

TEST(SmallComponents, PiecesBesideABoxAreNotJudged) {
  Pieces scene(near);
  scene.paint(Rect{20, 20, 6, 6});
  scene.thrCcPxl2 = 20;
  EXPECT_EQ(scene.extract().size(), 1U);
  EXPECT_EQ(scene.thrCcPxl2, 25) << "twice 20, but not above the configured 25";
}

TEST(SmallComponents, PiecesAreJudgedWhenEveryBoxWasDroppedAsTooSmall) {
  Pieces scene(near);
  scene.paint(Rect{20, 20, 6, 6});
  scene.minObjWPxl = scene.minObjHPxl = 50;
  scene.expectAfter(6, 3);
}

TEST(SmallComponents, DoublingBeyond32BitsWraps) {
  Pieces scene({});
  scene.thrCcPxl = std::numeric_limits<std::int32_t>::max();
  scene.thrCcPxl2 = 1500000000;
  scene.expectAfter(-1294967296, 0);  // 3000000000 - 2^32, the smaller of the two
}

TEST(SmallComponents, MinimumAboveTheConfiguredOneFallsBackToIt) {
  Pieces scene({});
  scene.thrCcPxl2 = 40;
  scene.expectAfter(25, 0);
}

}  // namespace
}  // namespace lm::test
