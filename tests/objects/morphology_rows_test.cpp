// The erosion and dilation on a table of rows.
#include "objects/morphology.h"

#include <gtest/gtest.h>

#include <limits>

#include "tests/support/by_name.h"
#include "tests/support/mask_art.h"

namespace lm::test {
namespace {

// A mask as a table of separate rows.
struct RowTable {
  explicit RowTable(const Rows& picture) : width(static_cast<int>(picture.at(0).size())) {
    for (const std::string& line : picture) {
      storage.push_back(bytesOf({line}));
    }
    for (Bytes& row : storage) {
      rows.push_back(row.data());
    }
  }
  [[nodiscard]] int height() const { return static_cast<int>(rows.size()); }
  [[nodiscard]] std::string drawn() const {
    Bytes all;
    for (const Bytes& row : storage) {
      all.insert(all.end(), row.begin(), row.end());
    }
    return drawing(all, width);
  }
  int width;
  std::vector<Bytes> storage;
  std::vector<std::uint8_t*> rows;
};

struct RowsCase {
  const char* name;
  std::uint8_t value;  // set for the dilation, cleared for the erosion
  int radius;
  Rows before, after;
};
void PrintTo(const RowsCase& morph, std::ostream* out) { *out << morph.name; }

class DilateRows : public ::testing::TestWithParam<RowsCase> {};

TEST_P(DilateRows, GrowsByADiamond) {
  RowTable mask(GetParam().before);
  EXPECT_EQ(dilate_ncv2(mask.rows.data(), GetParam().value, mask.width, mask.height(), GetParam().radius), 1);
  EXPECT_EQ(mask.drawn(), picture(GetParam().after));
}

const Rows dot{".......", ".......", ".......", "...#...", ".......", ".......", "......."};

INSTANTIATE_TEST_SUITE_P(
    Morphology, DilateRows,
    ::testing::Values(
        RowsCase{"radius1",
                 255,
                 1,
                 dot,
                 {".......", ".......", "...#...", "..###..", "...#...", ".......", "......."}},
        RowsCase{"radius2",
                 255,
                 2,
                 dot,
                 {".......", "...#...", "..###..", ".#####.", "..###..", "...#...", "......."}},
        RowsCase{"radius3",
                 255,
                 3,
                 dot,
                 {"...#...", "..###..", ".#####.", "#######", ".#####.", "..###..", "...#..."}},
        RowsCase{"cornersAreCutByTheFrame",
                 255,
                 2,
                 {"#....", ".....", ".....", "....."},
                 {"###..", "##...", "#....", "....."}},
        RowsCase{"bottomRightCorner",
                 255,
                 2,
                 {".....", ".....", ".....", "....#"},
                 {".....", "....#", "...##", "..###"}},
        RowsCase{"otherValuesAreReplaced", 255, 1, {"777", "7#7", "777"}, {"7#7", "###", "7#7"}},
        RowsCase{
            "grownPixelsDoNotGrowFurther", 255, 1, {".....", "#....", "....."}, {"#....", "##...", "#...."}},
        RowsCase{"nothingSet", 255, 1, {"...", "7z."}, {"...", "7z."}},
        // The marker is set + 2 below 254, else set - 2; bytes of it become set wherever they are.
        RowsCase{"markerBelowTheSetValue", 255, 1, {"y....", "....#"}, {"#...#", "...##"}},
        RowsCase{"markerAboveTheSetValue", 1, 1, {"3....", "....1"}, {"1...1", "...11"}},
        RowsCase{"set253HasMarker255", 253, 1, {"#....", "....y"}, {"y...y", "...yy"}},
        RowsCase{"set254HasMarker252", 254, 1, {"x....", "....z"}, {"z...z", "...zz"}},
        RowsCase{"set0HasMarker2", 0, 1, {"27777", "7777."}, {".777.", "777.."}}),
    byName);

class ErodeRows : public ::testing::TestWithParam<RowsCase> {};

TEST_P(ErodeRows, PeelsLayersOffTheValue255) {
  RowTable mask(GetParam().before);
  EXPECT_EQ(erode_ncv2(mask.rows.data(), GetParam().value, mask.width, mask.height(), GetParam().radius), 1);
  EXPECT_EQ(mask.drawn(), picture(GetParam().after));
}

const Rows block{".......", ".#####.", ".#####.", ".#####.", ".#####.", ".#####.", "......."};

INSTANTIATE_TEST_SUITE_P(
    Morphology, ErodeRows,
    ::testing::Values(
        RowsCase{"radius1",
                 0,
                 1,
                 block,
                 {".......", ".......", "..###..", "..###..", "..###..", ".......", "......."}},
        RowsCase{"radius2",
                 0,
                 2,
                 block,
                 {".......", ".......", ".......", "...#...", ".......", ".......", "......."}},
        RowsCase{"radius3", 0, 3, block, Rows(7, ".......")},
        RowsCase{"wholeFrameDoesNotErode", 0, 1, {"###", "###"}, {"###", "###"}},
        RowsCase{
            "borderPixelsErodeTowardsTheInside", 0, 1, {"##..", "##..", "...."}, {"#...", "....", "...."}},
        RowsCase{"otherValuesDoNotErode", 0, 1, {"777", "7#7", "777"}, {"777", "7#7", "777"}},
        RowsCase{"onlyTheValue255Counts",
                 0,
                 1,
                 {"....", ".zz.", ".11.", "...."},
                 {"....", ".zz.", ".11.", "...."}},
        // Markers and bytes that held their value before become cleared after every pass; neighbours erode
        // next.
        RowsCase{"markerBytesAreCleared", 0, 1, {"2777", "72#7", "7777"}, {".777", "7.#7", "7777"}},
        RowsCase{"clearedMarkerBytesErodeInTheNextPass",
                 0,
                 2,
                 {"2777", "72#7", "7777", "7777"},
                 {".777", "7..7", "7777", "7777"}},
        RowsCase{"cleared254HasMarker252", 254, 1, {"zzzz", "z#7x", "zzzz"}, {"zzzz", "zz7z", "zzzz"}},
        RowsCase{"cleared255HasMarker253", 255, 1, {"####", "#7y#"}, {"####", "#7##"}},
        // The marker is 255 itself, so that every set pixel is cleared, bordering or not.
        RowsCase{"cleared253TakesEverything", 253, 1, {"7777", "7##7", "yy.."}, {"7777", "7yy7", "yy.."}}),
    byName);

// ---- radius -------------------------------------------------------------------------------------

class RefusedRadius : public ::testing::TestWithParam<int> {};

TEST_P(RefusedRadius, LeavesTheMask) {
  const Rows rows{".#.....", "z.2...#", "..x....", ".#####.", "......."};
  RowTable mask(rows);
  EXPECT_EQ(dilate_ncv2(mask.rows.data(), 255, 7, 5, GetParam()), 0);
  EXPECT_EQ(erode_ncv2(mask.rows.data(), 0, 7, 5, GetParam()), 0);
  EXPECT_EQ(mask.drawn(), picture(rows));
}

constexpr int intMax = std::numeric_limits<int>::max();
INSTANTIATE_TEST_SUITE_P(Morphology, RefusedRadius,
                         ::testing::Values(0, -1, std::numeric_limits<int>::min(), 3, 4, 1000, intMax / 2 + 1,
                                           intMax));

TEST(MorphologyRows, RadiusMayBeHalfTheShorterSide) {
  RowTable wide({".....", "..#..", ".....", "....."});
  EXPECT_EQ(dilate_ncv2(wide.rows.data(), 255, 5, 4, 2), 1);
  EXPECT_EQ(erode_ncv2(wide.rows.data(), 0, 5, 4, 2), 1);
  RowTable narrow({"....", "....", "....", "....", "...."});
  EXPECT_EQ(dilate_ncv2(narrow.rows.data(), 255, 4, 5, 2), 1);
  EXPECT_EQ(dilate_ncv2(narrow.rows.data(), 255, 4, 5, 3), 0);
}

TEST(MorphologyRows, FrameWithoutPixelsIsRefused) {
  EXPECT_EQ(dilate_ncv2(nullptr, 255, 0, 0, 1), 0);
  EXPECT_EQ(erode_ncv2(nullptr, 0, -4, 5, 1), 0);
}

}  // namespace
}  // namespace lm::test
