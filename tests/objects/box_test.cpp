// Box geometry: gap, distance, union, overlap.
#include "objects/box.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "tests/objects/boxes.h"

namespace lm::test {
namespace {

constexpr float nan = std::numeric_limits<float>::quiet_NaN();

// ---- gap ----------------------------------------------------------------------------------------

struct GapCase {
  const char* name;
  boxRect a, b;
  float gap;
};
void PrintTo(const GapCase& pair, std::ostream* out) { *out << pair.name; }

class Gap : public ::testing::TestWithParam<GapCase> {};

TEST_P(Gap, IsSymmetric) {
  boxRect a = GetParam().a;
  boxRect b = GetParam().b;
  EXPECT_EQ(calMinDist_ncv(a, b), GetParam().gap);
  EXPECT_EQ(calMinDist_ncv(b, a), GetParam().gap);
}

INSTANTIATE_TEST_SUITE_P(
    Box, Gap,
    ::testing::Values(
        // x: |0 - 6| and |2 - 10|, so 6; y: |0 - 7| and |3 - 10|, so 7.
        GapCase{"nestedBoxesGiveTheSmallerEdgeDistance", box(0, 0, 10, 10), box(2, 3, 4, 4), 6.0F},
        GapCase{"identicalBoxes", box(5, 5, 8, 3), box(5, 5, 8, 3), 3.0F},
        GapCase{"overlappingCorners", box(0, 0, 10, 10), box(7, 8, 10, 10), 2.0F},  // |8 - 10|
        GapCase{"sharedEdgeOverlaps", box(0, 0, 10, 10), box(10, 0, 5, 10), 0.0F},
        GapCase{"sharedCornerOverlaps", box(0, 0, 10, 10), box(10, 10, 5, 5), 0.0F},
        GapCase{"onlyXOverlaps", box(0, 0, 10, 10), box(3, 17, 4, 4), 7.0F},
        GapCase{"onlyYOverlaps", box(0, 0, 10, 10), box(15, 3, 4, 4), 5.0F},
        GapCase{"edgesTouchOnXOnly", box(0, 0, 10, 10), box(10, 14, 5, 5), 4.0F},
        GapCase{"diagonal", box(0, 0, 10, 10), box(13, 14, 5, 5), 5.0F},  // 3, 4, 5
        GapCase{"diagonalNotWhole", box(0, 0, 10, 10), box(11, 11, 5, 5), std::sqrt(2.0F)},
        GapCase{"axisGapIsTruncated", box(0, 0, 10, 10), box(12.9F, 3, 4, 4), 2.0F},
        GapCase{"diagonalGapsAreTruncatedFirst", box(0, 0, 10, 10), box(13.9F, 14.9F, 5, 5), 5.0F},
        GapCase{"gapBelowOneIsZero", box(0, 0, 10, 10), box(10.5F, 3, 4, 4), 0.0F},
        GapCase{"negativePositions", box(-20, 0, 5, 5), box(-9, 0, 5, 5), 6.0F}),  // -9 - (-15)
    byName);

INSTANTIATE_TEST_SUITE_P(
    BoxBeyondInt, Gap,
    ::testing::Values(
        // The distance does not fit an int and becomes the smallest one.
        GapCase{"axisGap", box(0, 0, 10, 10), box(1e10F, 3, 4, 4), -2147483648.0F},
        // Both gaps are -2^31, whose squares wrap to 0.
        GapCase{"diagonal", box(0, 0, 10, 10), box(1e10F, 1e10F, 4, 4), 0.0F},
        // 65536 * 65536 wraps to 0; 1 * 1 remains.
        GapCase{"squareWrapsToZero", box(0, 0, 10, 10), box(65546, 11, 4, 4), 1.0F},
        // NaN is outside every range; its gap becomes -2^31, whose square wraps to 0; 7 * 7 remains.
        GapCase{"notANumber", box(0, 0, 10, 10), box(nan, 17, 4, 4), 7.0F}),
    byName);

TEST(Box, SquaredGapThatWrapsBelowZeroGivesNan) {
  boxRect a = box(0, 0, 10, 10);
  boxRect b = box(46351, 11, 4, 4);  // 46341 * 46341 + 1 wraps to -2147479014
  EXPECT_TRUE(std::isnan(calMinDist_ncv(a, b)));
}

// ---- distance -----------------------------------------------------------------------------------

TEST(Box, DistanceIsBetweenTheCornersWhateverTheSizes) {
  boxRect a = box(1, 2, 100, 100);
  boxRect b = box(4, 6, 0, 7);
  EXPECT_EQ(calDist_ncv(a, b), 5.0F);
  EXPECT_EQ(calDist_ncv(b, a), 5.0F);
  EXPECT_EQ(calDist_ncv(a, a), 0.0F);
}

TEST(Box, DistanceIsNotTruncated) {
  boxRect a = box(0.5F, 0, 0, 0);
  boxRect b = box(1, 0.5F, 0, 0);
  EXPECT_EQ(calDist_ncv(a, b), std::sqrt(0.5F));
}

// ---- union --------------------------------------------------------------------------------------

TEST(Box, UnionWithItselfIsOnePixelWiderAndHigher) {
  boxRect a = box(3, 4, 10, 20);
  EXPECT_EQ(uni_ncv(a, a), box(3, 4, 11, 21));
}

TEST(Box, UnionSpansBothAndOnePixelMore) {
  boxRect a = box(10, 4, 5, 5);
  boxRect b = box(2, 7, 4, 10);
  EXPECT_EQ(uni_ncv(a, b), box(2, 4, 14, 14));  // 15 - 2 + 1 and 17 - 4 + 1
  EXPECT_EQ(uni_ncv(b, a), box(2, 4, 14, 14));
}

TEST(Box, UnionOfNestedBoxesIsTheOuterOnePixelLarger) {
  boxRect outer = box(0, 0, 30, 30);
  boxRect inner = box(10, 10, 5, 5);
  EXPECT_EQ(uni_ncv(outer, inner), box(0, 0, 31, 31));
}

TEST(Box, UnionKeepsTheFirstBoxsNamesOnly) {
  boxRect a = box(0, 0, 1, 1);
  boxRect b = box(5, 5, 1, 1);
  a.names = {"gate", "gate"};
  b.names = {"yard"};
  EXPECT_EQ(uni_ncv(a, b).names, a.names);
  EXPECT_EQ(uni_ncv(b, a).names, b.names);
}

TEST(Box, UnionLeavesItsArgumentsUnchanged) {
  boxRect a = box(0, 0, 1, 1);
  boxRect b = box(5, 5, 1, 1);
  uni_ncv(a, b);
  EXPECT_EQ(a, box(0, 0, 1, 1));
  EXPECT_EQ(b, box(5, 5, 1, 1));
}

// ---- overlap ------------------------------------------------------------------------------------

struct OverlapCase {
  const char* name;
  boxRect a, b;
  bool overlap;
};
void PrintTo(const OverlapCase& pair, std::ostream* out) { *out << pair.name; }

class Overlap : public ::testing::TestWithParam<OverlapCase> {};

TEST_P(Overlap, ComparesTheUnionWithTheBoxesSideBySide) {
  boxRect a = GetParam().a;
  boxRect b = GetParam().b;
  EXPECT_EQ(isOverlap(a, b), GetParam().overlap);
  EXPECT_EQ(isOverlap(b, a), GetParam().overlap);
}

INSTANTIATE_TEST_SUITE_P(
    Box, Overlap,
    ::testing::Values(OverlapCase{"onePixelInCommon", box(0, 0, 4, 4), box(3, 3, 4, 4), true},  // 7 + 1 <= 8
                      OverlapCase{"lessThanAPixel", box(0, 0, 4, 4), box(3.5F, 0, 4, 4), false},
                      OverlapCase{"sharedEdge", box(0, 0, 4, 4), box(4, 0, 4, 4), false},  // 8 + 1 > 8
                      OverlapCase{"apartOnXOnly", box(0, 0, 4, 4), box(20, 1, 4, 4), false},
                      OverlapCase{"apartOnYOnly", box(0, 0, 4, 4), box(1, 20, 4, 4), false},
                      OverlapCase{"nested", box(0, 0, 30, 30), box(10, 10, 2, 2), true},
                      OverlapCase{"identical", box(2, 2, 1, 1), box(2, 2, 1, 1), true},  // 2 <= 2
                      OverlapCase{"identicalButTooSmall", box(2, 2, 0.5F, 4), box(2, 2, 0.5F, 4), false}),
    byName);

}  // namespace
}  // namespace lm::test
