// What a host wrote into the table of direct neighbours and into the label planes counts.
#include <gtest/gtest.h>

#include <algorithm>

#include "objects/component.h"
#include "tests/objects/mask_engine.h"
#include "tests/objects/scene.h"

namespace lm::test {
namespace {

// ---- direct neighbours --------------------------------------------------------------------------

TEST(HostNeighbours, PixelErodesWhereAListedNeighbourIsClearedWhereverItLies) {
  MaskEngine engine({"1111", "1111", "111."});
  engine.nbr4Idx[0].up = 11;  // the cleared pixel
  engine.erode_ncv_fast(engine.mask, 1, 0, 1);
  EXPECT_EQ(engine.drawn(), picture({".111", "111.", "11.."}));
}

TEST(HostNeighbours, PixelWithoutListedNeighboursDoesNotErode) {
  MaskEngine engine({"...", ".1.", "..."});
  engine.nbr4Idx[4] = {-1, -1, -1, -1, {}};
  engine.erode_ncv_fast(engine.mask, 1, 0, 3);
  EXPECT_EQ(engine.drawn(), picture({"...", ".1.", "..."}));
}

TEST(HostNeighbours, DilationListsThePixelsWhoseListedNeighboursDiffer) {
  MaskEngine engine({"####", "####"});
  engine.mask[7] = 0;
  engine.nbr4Idx[3].down = -1;
  engine.nbr4Idx[6].right = -1;
  engine.dilate_ncv_fast(engine.mask, 255, 255, 1);
  EXPECT_TRUE(engine.morphList.empty()) << "nobody lists the cleared pixel";
  engine.nbr4Idx[0].left = 7;
  engine.dilate_ncv_fast(engine.mask, 255, 255, 1);
  EXPECT_EQ(engine.morphList, (std::vector<int>{0, 1, 2, 3, 4, 5, 6})) << "each after its changed neighbour";
}

struct LabelledPair : MaskEngine {
  LabelledPair() : MaskEngine({"1...1"}), labels(mask, mask + 5) {}
  std::vector<ccObj> label() { return connectedComponent(labels.data(), 1); }
  std::vector<std::uint32_t> labels;
};

TEST(HostNeighbours, ListedNeighboursAreOneComponent) {
  LabelledPair engine;
  engine.nbr4Idx[0].up = 4;
  ASSERT_EQ(engine.label().size(), 1U);
  EXPECT_EQ(drawing(engine.labels, 5), picture({"2...2"}));
}

TEST(HostNeighbours, NeighbourThatIsListedByTheLaterPixelOnlyIsNotReached) {
  LabelledPair engine;
  engine.nbr4Idx[4].up = 0;
  EXPECT_EQ(engine.label().size(), 2U) << "the first pixel is labelled by then";
  EXPECT_EQ(drawing(engine.labels, 5), picture({"2...3"}));
}

TEST(HostNeighbours, CutBetweenTwoPixelsSeparatesThem) {
  MaskEngine engine({"1111"});
  std::vector<std::uint32_t> labels(4, 1);
  engine.nbr4Idx[1].right = engine.nbr4Idx[2].left = -1;
  EXPECT_EQ(engine.connectedComponent(labels.data(), 1).size(), 2U);
  EXPECT_EQ(drawing(labels, 4), picture({"2233"}));
}

TEST(HostNeighbours, ExtractionJoinsWhatTheyConnect) {
  Scene scene(128, 32);
  scene.paint({{10, 10, 2, 2}, {100, 20, 2, 2}});
  const std::size_t first = 10 * 128 + 10;
  scene.nbr4Idx[first].left = 20 * 128 + 100;
  scene.nbr4Idx[20 * 128 + 100].left = 10 * 128 + 10;
  EXPECT_EQ(scene.extract(), Boxes{box(9, 9, 4, 4)}) << "rows 12 and columns 12 are empty and end the search";
  EXPECT_EQ(scene.labelMap[21 * 128 + 101], 2U);
}

// ---- label planes -------------------------------------------------------------------------------

TEST(HostLabels, MapIsOverwrittenByTheNextExtraction) {
  Scene scene(130, 20);
  put(scene.labelMap, std::vector<std::uint32_t>(2600, 1));
  const std::uint32_t* const map = scene.labelMap;
  scene.paint(Rect{63, 8, 3, 2});
  EXPECT_EQ(scene.extract().size(), 1U);
  ASSERT_EQ(scene.labelMap, map);
  EXPECT_EQ(std::count(map, map + 2600, 2U), 6);
  EXPECT_EQ(std::count(map, map + 2600, 0U), 2594);
  EXPECT_EQ(map[8 * 130 + 63], 2U);
  EXPECT_EQ(map[9 * 130 + 65], 2U);
}

TEST(HostLabels, RowsAreOverwrittenByTheNextExtraction) {
  Scene scene(130, 20);
  scene.extract();
  std::fill_n(scene.labelRows[7], 130, 2U);
  scene.paint(Rect{63, 8, 3, 2});
  scene.thrCcPxl2 = 6;
  scene.genFgObj_ncv(scene.mask);
  EXPECT_EQ(std::count(scene.labelRows[7], scene.labelRows[7] + 130, 0U), 130);
  EXPECT_EQ(std::count(scene.labelRows[8], scene.labelRows[8] + 130, 2U), 3);
}

TEST(HostLabels, TableOfTheHostIsFilledAndItsMissingRowsAreMade) {
  Scene scene(130, 20);
  std::vector<std::uint32_t*> table(20, nullptr);
  table[9] = makePlane<std::uint32_t>(130, 77);
  const std::uint32_t* const row = table[9];
  scene.labelRows = table.data();
  scene.paint(Rect{63, 8, 3, 2});
  EXPECT_EQ(scene.extract().size(), 1U);
  ASSERT_EQ(scene.labelRows, table.data());
  EXPECT_EQ(scene.labelRows[9], row);
  EXPECT_EQ(row[65], 2U);
  EXPECT_EQ(row[66], 0U);
  ASSERT_NE(table[8], nullptr);
  EXPECT_EQ(table[8][63], 2U);
  scene.destoryBuffer();
  EXPECT_EQ(table, std::vector<std::uint32_t*>(20, nullptr));
}

TEST(HostLabels, MapMayBeLabelledInPlace) {
  Scene scene(4, 2);
  put(scene.labelMap, std::vector<std::uint32_t>{5, 5, 0, 1, 0, 5, 0, 1});
  EXPECT_EQ(scene.connectedComponent(scene.labelMap, 5).size(), 1U);
  EXPECT_EQ(drawing(scene.labelMap, 8, 4), picture({"22.1", ".2.1"}));
}

}  // namespace
}  // namespace lm::test
