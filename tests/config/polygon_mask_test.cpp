// Polygons and their masks.
#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <climits>
#include <cstdint>
#include <limits>
#include <numeric>

#include "config/polygon.h"
#include "tests/support/guarded_buffer.h"
#include "tests/support/mask_art.h"

namespace lm::test {
namespace {

using Outline = std::vector<pnt>;

const Outline square = {{0, 0}, {10, 0}, {10, 10}, {0, 10}};

int withinByArrays(const Outline& outline, float x, float y) {
  std::vector<float> xs;
  std::vector<float> ys;
  for (const pnt& vertex : outline) {
    xs.push_back(static_cast<float>(vertex.x));
    ys.push_back(static_cast<float>(vertex.y));
  }
  return pnpoly(static_cast<int>(outline.size()), xs.data(), ys.data(), x, y);
}

// Rasterises the outline over a mask of other bytes and expects the picture.
void expectMask(const Outline& outline, const Rows& expected) {
  const int width = static_cast<int>(expected[0].size());
  const int height = static_cast<int>(expected.size());
  Bytes mask(expected.size() * expected[0].size(), 7);
  EXPECT_EQ(cvtPoly2Mask(outline, mask.data(), width, height), 1);
  EXPECT_EQ(drawing(mask, width), picture(expected));
}

// ---- the two point tests ------------------------------------------------------------------------

TEST(PointInPolygon, TheListFormIncludesTheTopAndRightEdgesOfASquare) {
  for (int y = -2; y <= 12; ++y) {
    for (int x = -2; x <= 12; ++x) {
      const bool inside = 0 < x && x <= 10 && 0 <= y && y < 10;
      EXPECT_EQ(isWithinPoly(square, static_cast<float>(x), static_cast<float>(y)), inside) << x << ' ' << y;
    }
  }
}

TEST(PointInPolygon, TheArrayFormIncludesTheTopAndLeftEdgesOfASquare) {
  for (int y = -2; y <= 12; ++y) {
    for (int x = -2; x <= 12; ++x) {
      const bool inside = 0 <= x && x < 10 && 0 <= y && y < 10;
      EXPECT_EQ(withinByArrays(square, static_cast<float>(x), static_cast<float>(y)), inside)
          << x << ' ' << y;
    }
  }
}

TEST(PointInPolygon, BothFormsAgreeWhereNoEdgePassesThroughThePoint) {
  for (float y = -0.75F; y < 11.0F; y += 0.5F) {
    for (float x = -0.75F; x < 11.0F; x += 0.5F) {
      const bool inside = 0.0F < x && x < 10.0F && 0.0F < y && y < 10.0F;
      EXPECT_EQ(isWithinPoly(square, x, y), inside) << x << ' ' << y;
      EXPECT_EQ(withinByArrays(square, x, y), inside) << x << ' ' << y;
    }
  }
}

TEST(PointInPolygon, TheFormsDifferForAnEdgeThroughThePoint) {
  // The slanted edge from (8, 0) to (0, 8) passes through (4, 4) and is the only one on its right.
  const Outline triangle = {{0, 0}, {8, 0}, {0, 8}};
  EXPECT_EQ(isWithinPoly(triangle, 4.0F, 4.0F), 1);
  EXPECT_EQ(withinByArrays(triangle, 4.0F, 4.0F), 0);
  EXPECT_EQ(isWithinPoly(triangle, 0.0F, 4.0F), 0);
  EXPECT_EQ(withinByArrays(triangle, 0.0F, 4.0F), 1);
}

TEST(PointInPolygon, NeitherOrientationNorTheFirstVertexMatters) {
  const Outline shape = {{1, 1}, {9, 2}, {6, 8}, {5, 4}, {2, 7}};
  for (std::size_t turn = 0; turn < shape.size(); ++turn) {
    Outline turned = shape;
    std::rotate(turned.begin(), turned.begin() + static_cast<std::ptrdiff_t>(turn), turned.end());
    const Outline reversed(turned.rbegin(), turned.rend());
    for (float y = 0.25F; y < 10.0F; y += 0.5F) {
      for (float x = 0.25F; x < 10.0F; x += 0.5F) {
        EXPECT_EQ(isWithinPoly(turned, x, y), isWithinPoly(shape, x, y));
        EXPECT_EQ(isWithinPoly(reversed, x, y), isWithinPoly(shape, x, y));
        EXPECT_EQ(withinByArrays(reversed, x, y), withinByArrays(shape, x, y));
      }
    }
  }
}

TEST(PointInPolygon, WithoutVerticesNothingIsInsideAndNothingIsRead) {
  EXPECT_EQ(pnpoly(0, nullptr, nullptr, 0.0F, 0.0F), 0);
  EXPECT_EQ(pnpoly(-3, nullptr, nullptr, 0.0F, 0.0F), 0);
  EXPECT_EQ(isWithinPoly({}, 0.0F, 0.0F), 0);
}

TEST(PointInPolygon, APointThatIsNotANumberIsOutside) {
  const float nan = std::numeric_limits<float>::quiet_NaN();
  for (const auto& [x, y] : {std::pair{nan, 5.0F}, std::pair{5.0F, nan}, std::pair{nan, nan}}) {
    EXPECT_EQ(isWithinPoly(square, x, y), 0);
    EXPECT_EQ(withinByArrays(square, x, y), 0);
  }
}

TEST(PointInPolygon, DifferencesOfVerticesWrap) {
  // The edge between (2e9, 0) and (-2e9, 10) has dx = 4e9, which wraps to -294967296. At y = 5 its crossing
  // lies at -147483648 - 2e9 = -2147483648, left of the point, and not at 0, right of it.
  const Outline wide = {{2000000000, 0}, {-2000000000, 10}, {-2000000000, 0}};
  EXPECT_EQ(isWithinPoly(wide, -100.0F, 5.0F), 0);
  // The edge between (0, -2e9) and (10, 2e9) has dy = 4e9, which wraps to -294967296. At y = 0 its crossing
  // lies at 10 * 2e9 / -294967296, about -67.8, left of the point, and not at 5, right of it.
  const Outline high = {{0, -2000000000}, {0, 2000000000}, {10, 2000000000}};
  EXPECT_EQ(isWithinPoly(high, 2.0F, 0.0F), 0);
}

TEST(PointInPolygon, CrossingsAreComputedInSinglePrecision) {
  // dx = 33554435 becomes the float 33554436, so the crossing at y = 1 lies at 16777218 and not at
  // 16777217.5.
  const Outline wide = {{0, 0}, {33554435, 2}, {0, 2}};
  EXPECT_EQ(isWithinPoly(wide, 16777218.0F, 1.0F), 1);
}

// ---- rasterising --------------------------------------------------------------------------------

TEST(PolygonMask, ASquareSetsItsHundredPixels) {
  Rows expected(20, std::string(20, '.'));
  for (std::size_t y = 0; y < 10; ++y) expected[y].replace(1, 10, "1111111111");
  expectMask(square, expected);
}

TEST(PolygonMask, ATriangleIncludesItsSlantedEdge) {
  // Row y holds the columns 1 to 6 - y.
  expectMask({{0, 0}, {6, 0}, {0, 6}}, {".111111.",  //
                                        ".11111..",  //
                                        ".1111...",  //
                                        ".111....",  //
                                        ".11.....",  //
                                        ".1......",  //
                                        "........"});
}

TEST(PolygonMask, ABowTieFillsItsTwoTriangles) {
  // Edges y = x and y = 8 - x: row y < 4 holds y + 1 to 8 - y, row y > 4 holds 9 - y to y; at row 4 they
  // cross.
  expectMask({{0, 0}, {8, 0}, {0, 8}, {8, 8}}, {".11111111.",  //
                                                "..111111..",  //
                                                "...1111...",  //
                                                "....11....",  //
                                                "..........",  //
                                                "....11....",  //
                                                "...1111...",  //
                                                "..111111..",  //
                                                "..........",  //
                                                ".........."});
}

TEST(PolygonMask, AStarLeavesItsInnerPentagonEmpty) {
  // Row 1: the upper arm's edges cross at 10.65 and 11.35. Row 8: crossings at 0, 8.2, 13.8 and 22; between
  // the middle two lies the pentagon, down to the crossing of the lower edges above row 14.
  expectMask({{11, 0}, {18, 20}, {0, 8}, {22, 8}, {4, 20}}, {".......................",  //
                                                             "...........1...........",  //
                                                             "...........1...........",  //
                                                             "..........111..........",  //
                                                             "..........111..........",  //
                                                             "..........111..........",  //
                                                             ".........11111.........",  //
                                                             ".........11111.........",  //
                                                             ".11111111.....111111111",  //
                                                             "..111111.......111111..",  //
                                                             "....1111.......11111...",  //
                                                             ".....111.......111.....",  //
                                                             "................1......",  //
                                                             ".......1.......1.......",  //
                                                             ".......111....11.......",  //
                                                             "......11111.11111......",  //
                                                             "......11111..1111......",  //
                                                             "......111.....111......",  //
                                                             ".....111........11.....",  //
                                                             ".....1...........1.....",  //
                                                             "......................."});
}

TEST(PolygonMask, AHollowShapeFollowsItsOutline) {
  expectMask({{1, 0}, {8, 0}, {8, 5}, {6, 5}, {6, 2}, {3, 2}, {3, 5}, {1, 5}}, {"..1111111.",  //
                                                                                "..1111111.",  //
                                                                                "..11...11.",  //
                                                                                "..11...11.",  //
                                                                                "..11...11.",  //
                                                                                ".........."});
}

TEST(PolygonMask, AnOutlineTracedTwiceCancelsItself) {
  expectMask({{1, 1}, {5, 1}, {5, 4}, {1, 4}, {1, 1}, {5, 1}, {5, 4}, {1, 4}}, Rows(6, "........"));
}

TEST(PolygonMask, APolygonPartlyOutsideIsClippedByTheFrame) {
  expectMask({{-3, -2}, {3, -2}, {3, 2}, {-3, 2}}, {"1111..",  //
                                                    "1111..",  //
                                                    "......"});
  expectMask({{4, 1}, {50, 1}, {50, 60}, {4, 60}}, {"......",  //
                                                    ".....1",  //
                                                    ".....1"});
  expectMask({{-100, -100}, {100, -100}, {100, 100}, {-100, 100}}, {"111", "111"});
  expectMask({{10, 10}, {20, 10}, {20, 20}}, {"...", "..."});
}

TEST(PolygonMask, OutlinesWithoutAnAreaGiveAnEmptyMask) {
  const Rows empty(6, "........");
  expectMask({}, empty);
  expectMask({{2, 2}}, empty);
  expectMask({{1, 3}, {6, 3}}, empty);          // horizontal
  expectMask({{3, 1}, {3, 5}}, empty);          // vertical
  expectMask({{1, 1}, {5, 5}}, empty);          // diagonal
  expectMask({{1, 3}, {4, 3}, {6, 3}}, empty);  // collinear
  expectMask({{2, 2}, {2, 2}, {2, 2}}, empty);
}

TEST(PolygonMask, NothingIsWrittenWithoutPixels) {
  for (const auto& [width, height] : {std::pair{0, 4}, std::pair{4, 0}, std::pair{0, 0}, std::pair{-4, 4},
                                      std::pair{4, -4}, std::pair{-2, -2}, std::pair{INT_MIN, INT_MIN}}) {
    std::array<std::uint8_t, 16> mask{};
    mask.fill(7);
    EXPECT_EQ(cvtPoly2Mask(square, mask.data(), width, height), 1);
    EXPECT_THAT(mask, ::testing::Each(7)) << width << ' ' << height;
  }
}

TEST(PolygonMask, NothingIsWrittenPastTheLastPixel) {
  GuardedBuffer mask(64);
  mask.place(35, 0, GuardedBuffer::Against::back);
  cvtPoly2Mask({{-100, -100}, {100, -100}, {100, 100}, {-100, 100}}, mask.begin(), 7, 5);
  EXPECT_EQ(std::accumulate(mask.begin(), mask.end(), 0), 35);
  EXPECT_EQ(mask.damage(), "");
}

}  // namespace
}  // namespace lm::test
