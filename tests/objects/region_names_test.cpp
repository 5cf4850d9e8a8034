// Names of the regions that a box touches.
#include "objects/region_names.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <memory>

#include "tests/objects/boxes.h"
#include "tests/support/mask_art.h"

namespace lm::test {
namespace {

using Names = std::vector<std::string>;

constexpr float nan = std::numeric_limits<float>::quiet_NaN();

// A foreground mask and region masks of exactly the frame's size on the heap, so that the sanitizers detect
// every read beyond them. The touch test works on whole blocks of 16 columns, hence the widths.
struct Frame {
  Frame(int frameWidth, int frameHeight) : width(frameWidth), height(frameHeight), foreground(plane()) {}

  [[nodiscard]] std::unique_ptr<std::uint8_t[]> plane() const {
    return std::make_unique<std::uint8_t[]>(indexOf(0, height));
  }
  [[nodiscard]] std::size_t indexOf(int x, int y) const {
    return static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x);
  }
  // A region of the given pixels (column, row).
  void addRegion(const std::string& name, const std::vector<std::pair<int, int>>& pixels,
                 std::uint8_t value = 1) {
    masks.push_back(plane());
    for (const auto& [x, y] : pixels) {
      masks.back()[indexOf(x, y)] = value;
    }
    regions.push_back({name, {}, masks.back().get()});
  }
  // Foreground of the given pixels.
  void show(const std::vector<std::pair<int, int>>& pixels, std::uint8_t value = 255) {
    for (const auto& [x, y] : pixels) {
      foreground[indexOf(x, y)] = value;
    }
  }
  // Foreground and a region "all" everywhere.
  void showAll() {
    std::fill_n(foreground.get(), width * height, std::uint8_t{255});
    addRegion("all", {});
    std::fill_n(masks.back().get(), width * height, std::uint8_t{1});
  }
  // A single pixel that is foreground and region "spot".
  void spot(int x, int y) {
    show({{x, y}});
    addRegion("spot", {{x, y}});
  }
  Names namesOf(const boxRect& box) const {
    Boxes boxes{box};
    addRoiName2Obj(boxes, regions, foreground.get(), width, height);
    return boxes[0].names;
  }

  int width, height;
  std::unique_ptr<std::uint8_t[]> foreground;
  std::vector<std::unique_ptr<std::uint8_t[]>> masks;
  std::vector<polygon> regions;
};

TEST(RegionNames, ComeInRegionOrder) {
  Frame frame(32, 4);
  frame.show({{3, 1}, {9, 2}});
  frame.addRegion("yard", {{9, 2}});
  frame.addRegion("road", {{20, 1}});
  frame.addRegion("gate", {{3, 1}});
  EXPECT_EQ(frame.namesOf(box(0, 0, 16, 4)), (Names{"yard", "gate"}));
}

TEST(RegionNames, EveryBoxIsNamed) {
  Frame frame(32, 4);
  frame.show({{3, 1}, {20, 1}});
  frame.addRegion("left", {{3, 1}});
  frame.addRegion("right", {{20, 1}});
  Boxes boxes{box(0, 0, 16, 4), box(16, 0, 16, 4), box(0, 2, 16, 2)};
  addRoiName2Obj(boxes, frame.regions, frame.foreground.get(), 32, 4);
  EXPECT_EQ(boxes[0].names, Names{"left"});
  EXPECT_EQ(boxes[1].names, Names{"right"});
  EXPECT_EQ(boxes[2].names, Names{});
}

TEST(RegionNames, AreAppendedEvenIfTheBoxHasThemAlready) {
  Frame frame(32, 4);
  frame.spot(3, 1);
  boxRect named = box(0, 0, 16, 4);
  named.names = {"spot", "old"};
  EXPECT_EQ(frame.namesOf(named), (Names{"spot", "old", "spot"}));
}

TEST(RegionNames, RegionsOfTheSameNameAreListedEach) {
  Frame frame(32, 4);
  frame.show({{3, 1}});
  frame.addRegion("gate", {{3, 1}});
  frame.addRegion("gate", {{3, 1}});
  EXPECT_EQ(frame.namesOf(box(0, 0, 16, 4)), (Names{"gate", "gate"}));
}

TEST(RegionNames, NeedRegions) {
  Frame frame(32, 4);
  frame.show({{3, 1}});
  EXPECT_EQ(frame.namesOf(box(0, 0, 16, 4)), Names{});
}

TEST(RegionNames, NeedForegroundAndRegionInTheSamePixel) {
  Frame frame(32, 4);
  frame.show({{3, 1}});
  frame.addRegion("beside", {{4, 1}, {3, 2}});
  EXPECT_EQ(frame.namesOf(box(0, 0, 16, 4)), Names{});
}

TEST(RegionNames, NeedForeground255AndRegion1) {
  for (const auto& [shown, region] : {std::pair<int, int>{1, 1}, {254, 1}, {255, 255}, {255, 2}}) {
    Frame frame(32, 4);
    frame.show({{3, 1}}, static_cast<std::uint8_t>(shown));
    frame.addRegion("gate", {{3, 1}}, static_cast<std::uint8_t>(region));
    EXPECT_EQ(frame.namesOf(box(0, 0, 16, 4)), Names{}) << shown << " and " << region;
  }
}

TEST(RegionNames, RegionWithoutAMaskTouchesNothing) {
  Frame frame(32, 4);
  frame.showAll();
  frame.regions.push_back({"no mask", {}, nullptr});
  EXPECT_EQ(frame.namesOf(box(0, 0, 16, 4)), Names{"all"});
}

TEST(RegionNames, MissingForegroundTouchesNothing) {
  Frame frame(32, 4);
  frame.showAll();
  Boxes boxes{box(0, 0, 16, 4)};
  addRoiName2Obj(boxes, frame.regions, nullptr, 32, 4);
  EXPECT_EQ(boxes[0].names, Names{});
}

// ---- which pixels are tested --------------------------------------------------------------------

struct SpotCase {
  const char* name;
  boxRect area;
  int x, y;  // the one pixel that could touch, in a frame of 40 x 6
  bool touched;
};
void PrintTo(const SpotCase& spot, std::ostream* out) { *out << spot.name; }

class TouchingSpot : public ::testing::TestWithParam<SpotCase> {};

TEST_P(TouchingSpot, IsFoundInWholeBlocksOf16ColumnsOnly) {
  Frame frame(40, 6);
  frame.spot(GetParam().x, GetParam().y);
  EXPECT_EQ(frame.namesOf(GetParam().area), GetParam().touched ? Names{"spot"} : Names{});
}

INSTANTIATE_TEST_SUITE_P(
    RegionNames, TouchingSpot,
    ::testing::Values(SpotCase{"firstColumn", box(5, 1, 16, 4), 5, 1, true},
                      SpotCase{"lastColumn", box(5, 1, 16, 4), 20, 4, true},
                      SpotCase{"leftOfTheBox", box(5, 1, 16, 4), 4, 2, false},
                      SpotCase{"rightOfTheBox", box(5, 1, 16, 4), 21, 2, false},
                      SpotCase{"aboveTheBox", box(5, 1, 16, 4), 8, 0, false},
                      SpotCase{"belowTheBox", box(5, 1, 16, 4), 8, 5, false},
                      SpotCase{"boxNarrowerThanABlock", box(5, 1, 15, 4), 8, 2, false},
                      SpotCase{"columnsAfterTheLastBlock", box(5, 1, 31, 4), 21, 2, false},
                      SpotCase{"secondBlock", box(5, 1, 32, 4), 36, 2, true},
                      // Every number of the box is truncated first.
                      SpotCase{"truncatedPosition", box(5.9F, 1.9F, 16.9F, 1.9F), 5, 1, true},
                      SpotCase{"truncatedHeight", box(5, 1, 16, 1.9F), 5, 2, false},
                      SpotCase{"truncatedWidth", box(5, 1, 15.9F, 4), 5, 2, false},
                      SpotCase{"heightZero", box(5, 1, 16, 0.9F), 5, 1, false},
                      SpotCase{"negativeHeight", box(5, 1, 16, -3), 5, 1, false},
                      SpotCase{"negativeWidth", box(5, 1, -16, 4), 5, 1, false},
                      SpotCase{"smallNegativePositionIsZero", box(-0.9F, -0.9F, 16, 1), 0, 0, true}),
    byName);

// A box may reach past the frame. Its indices run on into the next row as they do inside; nothing before the
// first or after the last pixel is read.
INSTANTIATE_TEST_SUITE_P(
    RegionNamesPastTheFrame, TouchingSpot,
    ::testing::Values(SpotCase{"rightEdgeRunsOnIntoTheNextRow", box(30, 2, 16, 1), 5, 3, true},
                      SpotCase{"notFurther", box(30, 2, 16, 1), 6, 3, false},
                      SpotCase{"insidePartOfTheLastRow", box(30, 5, 16, 1), 39, 5, true},
                      SpotCase{"lastRowDoesNotRunOnToTheFirst", box(30, 5, 16, 1), 0, 0, false},
                      SpotCase{"bottom", box(30, 4, 16, 100), 39, 5, true},
                      SpotCase{"frameSizedBoxFromInside", box(23, 3, 40, 6), 39, 5, true},
                      SpotCase{"leftEdgeRunsBackIntoTheRowBefore", box(-4, 1, 16, 1), 36, 0, true},
                      SpotCase{"leftEdgeInsidePart", box(-4, 0, 16, 1), 11, 0, true},
                      SpotCase{"notAfterTheLeftPart", box(-4, 0, 16, 1), 12, 0, false},
                      SpotCase{"firstRowDoesNotRunBackToTheLast", box(-4, 0, 16, 1), 39, 5, false},
                      SpotCase{"above", box(0, -2, 16, 3), 15, 0, true},
                      SpotCase{"onlyAbove", box(0, -2, 16, 2), 15, 0, false},
                      SpotCase{"afterTheEnd", box(0, 6, 16, 3), 0, 0, false},
                      SpotCase{"farAfterTheEnd", box(1e6F, 1e6F, 16, 16), 0, 0, false},
                      // 80 columns left of the frame are two rows: row 2 of the box begins at index 0.
                      SpotCase{"laterRowsReachTheFrame", box(-80, 0, 16, 3), 0, 0, true},
                      SpotCase{"hugeHeight", box(0, 0, 16, 2e9F), 15, 5, true},
                      SpotCase{"hugeWidth", box(0, 0, 2e9F, 1), 39, 5, true},
                      SpotCase{"heightOutOfIntRange", box(0, 0, 16, 3e9F), 0, 0, false},
                      SpotCase{"widthOutOfIntRange", box(0, 0, 3e9F, 6), 0, 0, false}),
    byName);

TEST(RegionNames, BoxesThatAreNotNumbersTouchNothing) {
  Frame frame(40, 6);
  frame.showAll();
  EXPECT_EQ(frame.namesOf(box(nan, 0, 16, 6)), Names{});
  EXPECT_EQ(frame.namesOf(box(0, nan, 16, 6)), Names{});
  EXPECT_EQ(frame.namesOf(box(0, 0, nan, 6)), Names{});
  EXPECT_EQ(frame.namesOf(box(0, 0, 16, nan)), Names{});
}

TEST(RegionNames, FrameSmallerThanABlockIsNotReadPastItsEnd) {
  Frame frame(3, 2);
  frame.showAll();
  EXPECT_EQ(frame.namesOf(box(0, 0, 3, 2)), Names{});
  EXPECT_EQ(frame.namesOf(box(0, 0, 16, 1)), Names{"all"}) << "the block's first six pixels are the frame";
}

TEST(RegionNames, FrameWithoutPixelsTouchesNothing) {
  const Frame frame(32, 4);
  std::vector<polygon> regions{{"all", {}, frame.foreground.get()}};
  for (const auto& [width, height] : {std::pair{0, 4}, {32, 0}, {-32, 4}, {32, -4}}) {
    Boxes boxes{box(0, 0, 16, 4)};
    addRoiName2Obj(boxes, regions, frame.foreground.get(), width, height);
    EXPECT_EQ(boxes[0].names, Names{});
  }
}

// ---- isTouch ------------------------------------------------------------------------------------

class TouchingPixel : public ::testing::TestWithParam<SpotCase> {};

TEST_P(TouchingPixel, IsTestedWithoutBlocksAndClippedToTheFrame) {
  Frame frame(40, 6);
  frame.spot(GetParam().x, GetParam().y);
  EXPECT_EQ(isTouch(GetParam().area, frame.foreground.get(), frame.masks[0].get(), 40, 6),
            GetParam().touched);
}

INSTANTIATE_TEST_SUITE_P(
    IsTouch, TouchingPixel,
    ::testing::Values(SpotCase{"firstPixel", box(5, 1, 3, 2), 5, 1, true},
                      SpotCase{"lastPixel", box(5, 1, 3, 2), 7, 2, true},
                      SpotCase{"leftOfTheBox", box(5, 1, 3, 2), 4, 1, false},
                      SpotCase{"rightOfTheBox", box(5, 1, 3, 2), 8, 1, false},
                      SpotCase{"aboveTheBox", box(5, 1, 3, 2), 5, 0, false},
                      SpotCase{"belowTheBox", box(5, 1, 3, 2), 5, 3, false},
                      // The near edges are compared as they are, the far ones are truncated.
                      SpotCase{"fractionalLeftEdge", box(5.5F, 1, 3, 2), 5, 1, false},
                      SpotCase{"insideFractionalEdges", box(5.5F, 1.5F, 3, 2), 6, 2, true},
                      SpotCase{"fractionalTopEdge", box(5, 1.5F, 3, 2), 5, 1, false},
                      SpotCase{"farEdgeTruncated", box(5.5F, 1, 3, 2), 8, 1, false},  // int(8.5) is 8
                      SpotCase{"fractionsThatAddUp", box(5.5F, 1, 3.5F, 2), 8, 1, true},
                      SpotCase{"empty", box(5, 1, 0, 2), 5, 1, false},
                      SpotCase{"clippedLeftAndAbove", box(-9, -9, 10, 10), 0, 0, true},
                      SpotCase{"doesNotRunOn", box(38, 2, 16, 1), 0, 3, false},
                      SpotCase{"clippedRightAndBelow", box(38, 4, 99, 99), 39, 5, true},
                      SpotCase{"beyondTheFrame", box(40, 6, 9, 9), 39, 5, false},
                      SpotCase{"notANumber", box(nan, 1, 3, 2), 5, 1, false},
                      SpotCase{"farEdgeOutOfIntRange", box(0, 0, 3e9F, 6), 5, 1, false}),
    byName);

TEST(IsTouch, NeedsForeground255AndRegion1) {
  for (const auto& [shown, region] : {std::pair<int, int>{1, 1}, {254, 1}, {255, 255}, {255, 2}, {0, 1}}) {
    Frame frame(8, 4);
    frame.show({{3, 1}}, static_cast<std::uint8_t>(shown));
    frame.addRegion("gate", {{3, 1}}, static_cast<std::uint8_t>(region));
    EXPECT_FALSE(isTouch(box(0, 0, 8, 4), frame.foreground.get(), frame.masks[0].get(), 8, 4));
  }
}

}  // namespace
}  // namespace lm::test
