// Boxes of labelled regions.
#include <gtest/gtest.h>

#include "objects/component.h"
#include "tests/objects/boxes.h"
#include "tests/support/mask_art.h"

namespace lm::test {
namespace {

// A label image as the functions take it: a separate row for each line of the picture.
template <class T>
struct Image {
  explicit Image(const Rows& picture)
      : width(static_cast<int>(picture.at(0).size())), height(static_cast<int>(picture.size())) {
    for (const std::string& line : picture) {
      const Bytes bytes = bytesOf({line});
      storage.emplace_back(bytes.begin(), bytes.end());
    }
    for (auto& row : storage) {
      rows.push_back(row.data());
    }
  }
  int width, height;
  std::vector<std::vector<T>> storage;
  std::vector<T*> rows;
};

struct BoxCase {
  const char* name;
  Rows picture;
  boxRect expected;
};
void PrintTo(const BoxCase& region, std::ostream* out) { *out << region.name; }

// ---- label rows: a margin of one pixel ----------------------------------------------------------

class LabelBox : public ::testing::TestWithParam<BoxCase> {};

// The search starts at the first 2 in raster order.
TEST_P(LabelBox, HasAMarginOfOnePixelExceptAtTheBorders) {
  Image<std::uint32_t> image(GetParam().picture);
  for (int y = 0; y < image.height; ++y) {
    for (int x = 0; x < image.width; ++x) {
      if (image.rows[static_cast<std::size_t>(y)][x] == 2) {
        EXPECT_EQ(findBoundingBox(image.rows.data(), 2, image.width, image.height, x, y),
                  GetParam().expected);
        return;
      }
    }
  }
}

INSTANTIATE_TEST_SUITE_P(
    BoundingBox, LabelBox,
    ::testing::Values(
        BoxCase{
            "insideTheFrame", {"........", "........", "..2222..", "..2222..", "........"}, box(1, 1, 6, 4)},
        BoxCase{"firstPixelInTheMiddle",
                {".......", "...2...", "..222..", ".22222.", "......."},
                box(0, 0, 7, 5)},
        BoxCase{"otherLabelsDoNotCount",
                {"3333333", "3.....3", "3..2..3", "3.....3", "3333333"},
                box(2, 1, 3, 3)},
        BoxCase{"leftBorderDropsTheMargin", {"......", "22....", "22....", "......"}, box(0, 0, 3, 4)},
        BoxCase{"topBorderDropsTheMargin", {"..22..", "..22..", "......", "......"}, box(1, 0, 4, 3)},
        // In the next three cases the box reaches past the frame: its side is the whole frame's, wherever it
        // starts.
        BoxCase{"rightBorderGivesTheFramesWidth", {"......", "....22", "......", "......"}, box(3, 0, 6, 3)},
        BoxCase{
            "bottomBorderGivesTheFramesHeight", {"......", "......", "......", ".22..."}, box(0, 2, 4, 4)},
        BoxCase{"bottomRightCorner", {".....", ".....", "....2"}, box(3, 1, 5, 3)},
        BoxCase{"wholeFrame", {"222", "222"}, box(0, 0, 3, 2)},
        BoxCase{"onePixelFrame", {"2"}, box(0, 0, 1, 1)},
        // Row 1 and column 2 hold no 2, so pixels beyond them belong to another component.
        BoxCase{"searchEndsAtTheFirstEmptyRow", {"22....", "......", "22...."}, box(0, 0, 3, 2)},
        BoxCase{"searchEndsAtTheFirstEmptyColumn", {"22.22.", "22.22.", "......"}, box(0, 0, 3, 3)}),
    byName);

TEST(BoundingBox, OnePixelAtColumn5Row7) {
  Rows picture(10, std::string(20, '.'));
  picture[7][5] = '2';
  Image<std::uint32_t> image(picture);
  EXPECT_EQ(findBoundingBox(image.rows.data(), 2, 20, 10, 5, 7), box(4, 6, 3, 3));
}

TEST(BoundingBox, SearchesThatStartOutsideTheFrameAreSkipped) {
  Image<std::uint32_t> image({"....", ".2..", "...."});
  EXPECT_EQ(findBoundingBox(image.rows.data(), 2, 4, 3, -1, -1), box(0, 0, 4, 3));
  EXPECT_EQ(findBoundingBox(image.rows.data(), 2, 4, 3, 4, 3), box(0, 0, 4, 3));
  EXPECT_EQ(findBoundingBox(image.rows.data(), 2, 4, 3, 1, -1), box(0, 0, 3, 3)) << "columns only";
  EXPECT_EQ(findBoundingBox(image.rows.data(), 2, 4, 3, -1, 1), box(0, 0, 4, 3)) << "rows only";
}

// ---- byte rows: tight ---------------------------------------------------------------------------

class ByteBox : public ::testing::TestWithParam<BoxCase> {};

TEST_P(ByteBox, IsTight) {
  Image<std::uint8_t> image(GetParam().picture);
  EXPECT_EQ(findBoundingBox(image.rows.data(), 2, image.width, image.height), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    BoundingBox, ByteBox,
    ::testing::Values(BoxCase{"insideTheFrame", {"......", "..22..", "..2...", "......"}, box(2, 1, 2, 2)},
                      BoxCase{"severalRegions", {"......", ".2....", "......", "....2."}, box(1, 1, 4, 3)},
                      BoxCase{"onePixel", {"....", "...2"}, box(3, 1, 1, 1)},
                      BoxCase{"corners", {"2...", "....", "...2"}, box(0, 0, 4, 3)},
                      BoxCase{"otherValuesDoNotCount", {"3#3#", "..2.", "1###"}, box(2, 1, 1, 1)},
                      BoxCase{"absentLabelGivesTheWholeFrame", {"....", "3333", "...."}, box(0, 0, 4, 3)}),
    byName);

TEST(BoundingBox, LabelOutsideTheByteRangeIsAbsent) {
  Image<std::uint8_t> image({"....", ".#..", "...."});
  EXPECT_EQ(findBoundingBox(image.rows.data(), 255, 4, 3), box(1, 1, 1, 1));
  EXPECT_EQ(findBoundingBox(image.rows.data(), 256, 4, 3), box(0, 0, 4, 3));
  EXPECT_EQ(findBoundingBox(image.rows.data(), -1, 4, 3), box(0, 0, 4, 3));
}

// ---- findFgBox ----------------------------------------------------------------------------------

TEST(FindFgBox, HasNoEffect) {
  Image<std::uint8_t> image({"..##", "..##", "...."});
  int count = 7;
  Boxes boxes{box(1, 2, 3, 4)};
  findFgBox(image.rows.data(), 4, 3, 5, 0.5F, count, boxes);
  EXPECT_EQ(count, 7);
  EXPECT_EQ(boxes, Boxes{box(1, 2, 3, 4)});
  EXPECT_EQ(drawing(image.storage[0], 4), picture({"..##"}));
}

TEST(FindFgBox, ReadsNoneOfItsArguments) {
  int count = 7;
  Boxes boxes;
  findFgBox(nullptr, 4, 3, 5, 0.5F, count, boxes);
  findFgBox(nullptr, 0, 0, 5, 0.5F, count, boxes);
  EXPECT_EQ(count, 7);
  EXPECT_TRUE(boxes.empty());
}

}  // namespace
}  // namespace lm::test
