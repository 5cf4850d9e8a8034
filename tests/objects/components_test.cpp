// Labelling of 4-connected regions.
#include <gtest/gtest.h>

#include "objects/component.h"
#include "tests/support/engine_fixture.h"

bool operator==(const ccObj& a, const ccObj& b) {
  return a.label == b.label && a.count == b.count && a.first == b.first;
}
void PrintTo(const ccObj& component, std::ostream* out) {
  *out << "(label " << component.label << ", " << component.count << " pixels from " << component.first
       << ")";
}

namespace lm::test {
namespace {

using Components = std::vector<ccObj>;

// A label map drawn as a picture, and an engine of its size.
struct LabelMap {
  explicit LabelMap(const Rows& rows)
      : engine(static_cast<int>(rows.at(0).size()), static_cast<int>(rows.size()), 1) {
    const Bytes bytes = bytesOf(rows);
    labels.assign(bytes.begin(), bytes.end());
  }
  Components label(std::uint8_t value) { return engine.connectedComponent(labels.data(), value); }
  [[nodiscard]] std::string drawn() const { return drawing(labels, engine.szImgX); }

  SizedEngine engine;
  std::vector<std::uint32_t> labels;
};

TEST(Components, MapWithoutTheValueIsUnchangedAndGivesNothing) {
  LabelMap map({"..3.", "2..#"});
  EXPECT_EQ(map.label(1), Components{});
  EXPECT_EQ(map.drawn(), picture({"..3.", "2..#"}));
}

TEST(Components, OnePixelAtColumn5Row7) {
  Rows rows(10, std::string(20, '.'));
  rows[7][5] = '1';
  LabelMap map(rows);
  EXPECT_EQ(map.label(1), (Components{{2, 1, 145}}));
}

TEST(Components, AreListedInRasterOrderOfTheirFirstPixels) {
  LabelMap map({"..1..1",  //
                "1.1..1",  //
                "1....."});
  EXPECT_EQ(map.label(1), (Components{{2, 2, 2}, {3, 2, 5}, {4, 2, 6}}));
  EXPECT_EQ(map.drawn(), picture({"..2..3",  //
                                  "4.2..3",  //
                                  "4....."}));
}

TEST(Components, DiagonalNeighboursAreTwoComponents) {
  LabelMap map({"1.", ".1"});
  EXPECT_EQ(map.label(1), (Components{{2, 1, 0}, {3, 1, 3}}));
}

TEST(Components, RowEndsAreNotConnectedToTheNextRow) {
  LabelMap map({"..1", "1.."});
  EXPECT_EQ(map.label(1), (Components{{2, 1, 2}, {3, 1, 3}}));
}

TEST(Components, BranchesThatMeetLaterAreOneComponent) {
  LabelMap map({"1.1.1",  //
                "1.1.1",  //
                "11111"});
  EXPECT_EQ(map.label(1), (Components{{2, 11, 0}}));
}

TEST(Components, SpiralIsFollowedToItsEnd) {
  LabelMap map({"11111",  //
                "....1",  //
                "111.1",  //
                "1...1",  //
                "11111"});
  EXPECT_EQ(map.label(1), (Components{{2, 17, 0}}));
}

TEST(Components, OtherValuesSeparateAndKeepTheirValue) {
  LabelMap map({"13131", "333#3"});
  EXPECT_EQ(map.label(1), (Components{{2, 1, 0}, {3, 1, 2}, {4, 1, 4}}));
  // Pixels that held 3 keep it, next to the new label 3.
  EXPECT_EQ(map.drawn(), picture({"23334", "333#3"}));
}

TEST(Components, LabelsNeverTakeTheSearchedValue) {
  LabelMap three({"3.3.3.3"});
  EXPECT_EQ(three.label(3), (Components{{2, 1, 0}, {4, 1, 2}, {5, 1, 4}, {6, 1, 6}}));
}

TEST(Components, SearchedValueTwoStartsAtThree) {
  LabelMap two({"2.22"});
  EXPECT_EQ(two.label(2), (Components{{3, 1, 0}, {4, 2, 2}}));
  EXPECT_EQ(two.drawn(), picture({"3.44"}));
}

TEST(Components, ValueZeroLabelsTheBackground) {
  LabelMap map({".1.", ".1."});
  EXPECT_EQ(map.label(0), (Components{{2, 2, 0}, {3, 2, 2}}));
}

TEST(Components, LabelsBeyondAByteSkipTheSearchedValueOnce) {
  std::string row;
  for (int i = 0; i < 256; ++i) {
    row += "#.";
  }
  LabelMap map({row});
  const Components components = map.label(255);
  ASSERT_EQ(components.size(), 256U);
  EXPECT_EQ(components[252].label, 254U);
  EXPECT_EQ(components[253].label, 256U);
  EXPECT_EQ(components[255].label, 258U);
}

TEST(Components, FrameSizedRegionDoesNotExhaustTheStack) {
  LabelMap map(Rows(300, std::string(400, '1')));
  EXPECT_EQ(map.label(1), (Components{{2, 120000, 0}}));
}

TEST(Components, RunsCrossWordBoundaries) {
  for (const std::size_t width : {63U, 64U, 65U, 128U, 130U}) {
    Rows rows(3, std::string(width, '1'));
    rows[1] = std::string(width, '.');
    rows[1].back() = '1';
    LabelMap map(rows);
    const auto pixels = static_cast<std::int32_t>(2 * width + 1);
    EXPECT_EQ(map.label(1), (Components{{2, pixels, 0}})) << width;
  }
}

// A row of 130 pixels and one of 10, as in a frame whose pixel count is not width times height.
TEST(Components, LastRowMayBeShort) {
  SizedEngine engine(140, 1, 1);
  engine.szImgX = 130;
  std::vector<std::uint32_t> labels(140, 1);
  labels[0] = 0;
  EXPECT_EQ(engine.connectedComponent(labels.data(), 1), (Components{{2, 139, 1}}));
  EXPECT_EQ(labels[139], 2U);
}

TEST(Components, MissingMapGivesNothing) {
  SizedEngine engine(4, 3, 1);
  EXPECT_EQ(engine.connectedComponent(nullptr, 1), Components{});
}

TEST(Components, EngineWithoutNeighboursGivesNothing) {
  kAMBLE engine;
  engine.numPixel = 4;
  std::vector<std::uint32_t> labels(4, 1);
  EXPECT_EQ(engine.connectedComponent(labels.data(), 1), Components{});
}

}  // namespace
}  // namespace lm::test
