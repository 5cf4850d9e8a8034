// The list-based erosion and dilation, which object extraction uses.
#include <gtest/gtest.h>

#include <limits>

#include "tests/objects/mask_engine.h"

namespace lm::test {
namespace {

// ---- erosion ------------------------------------------------------------------------------------

std::string eroded(const Rows& rows, std::uint8_t set, std::uint8_t cleared, int passes) {
  MaskEngine engine(rows);
  EXPECT_EQ(engine.erode_ncv_fast(engine.mask, set, cleared, passes), 1);
  return engine.drawn();
}

const Rows block{".......",  //
                 ".11111.",  //
                 ".11111.",  //
                 ".11111.",  //
                 ".11111.",  //
                 ".11111.",  //
                 "......."};

TEST(ErodeList, PassPeelsOneLayer) {
  EXPECT_EQ(eroded(block, 1, 0, 1), picture({".......",  //
                                             ".......",  //
                                             "..111..",  //
                                             "..111..",  //
                                             "..111..",  //
                                             ".......",  //
                                             "......."}));
}

TEST(ErodeList, EveryPassPeelsAnotherLayer) {
  EXPECT_EQ(eroded(block, 1, 0, 2), picture({".......",  //
                                             ".......",  //
                                             ".......",  //
                                             "...1...",  //
                                             ".......",  //
                                             ".......",  //
                                             "......."}));
  EXPECT_EQ(eroded(block, 1, 0, 3), picture(Rows(7, ".......")));
}

TEST(ErodeList, LayersAreFourConnected) {
  EXPECT_EQ(eroded({"....#",  //
                    ".....",  //
                    "..1..",  //
                    ".111.",  //
                    "11111",  //
                    ".111.",  //
                    "..1.."},
                   1, 0, 1),
            picture({"....#",  //
                     ".....",  //
                     ".....",  //
                     "..1..",  //
                     ".111.",  //
                     "..1..",  //
                     "....."}));
}

TEST(ErodeList, DiagonalGapDoesNotErode) {
  EXPECT_EQ(eroded({".11", "111", "111"}, 1, 0, 1), picture({"..1", ".11", "111"}))
      << "the centre touches the gap by its corner only";
}

TEST(ErodeList, FrameEdgeDoesNotErode) {
  EXPECT_EQ(eroded({"11..", "11..", "...."}, 1, 0, 1), picture({"1...", "....", "...."}));
  EXPECT_EQ(eroded({"111", "111"}, 1, 0, 3), picture({"111", "111"}));
}

TEST(ErodeList, OtherValuesDoNotErode) {
  EXPECT_EQ(eroded({"2222", "2112", "2222"}, 1, 0, 3), picture({"2222", "2112", "2222"}));
  EXPECT_EQ(eroded({"222.", "2112", "2222"}, 1, 0, 1), picture({"222.", "2112", "2222"}));
  EXPECT_EQ(eroded({"222", "21.", "222"}, 1, 0, 1), picture({"222", "2..", "222"}));
}

TEST(ErodeList, OnePixelWideLineDisappears) {
  EXPECT_EQ(eroded({"......", "111111", "......"}, 1, 0, 1), picture(Rows(3, "......")));
  EXPECT_EQ(eroded({"..1..", "..1..", "..1.."}, 1, 0, 1), picture(Rows(3, ".....")));
}

TEST(ErodeList, PassesBelowOneLeaveTheMask) {
  for (const int passes : {0, -1, std::numeric_limits<int>::min()}) {
    EXPECT_EQ(eroded(block, 1, 0, passes), picture(block));
  }
}

TEST(ErodeList, SetAndClearedAreTheCallersValues) {
  EXPECT_EQ(eroded({"zzzz", "z##z", "zzzz"}, 255, 254, 1), picture(Rows(3, "zzzz")));
  EXPECT_EQ(eroded({"####", "#..#", "####"}, 0, 255, 1), picture(Rows(3, "####")));
  EXPECT_EQ(eroded({"#11#", "1..1", "#11#"}, 1, 255, 1), picture({"####", "#..#", "####"}));
}

TEST(ErodeList, MarkerValuesOfTheOtherFamiliesHaveNoMeaning) {
  EXPECT_EQ(eroded({"..2..", ".111.", "2.3.2"}, 1, 0, 1), picture({"..2..", "..1..", "2.3.2"}));
}

TEST(ErodeList, ValueErodedIntoItselfStays) {
  EXPECT_EQ(eroded({"11.", "11."}, 1, 1, 3), picture({"11.", "11."}));
}

TEST(ErodeList, ScratchListIsReusedAndHoldsTheLastPass) {
  MaskEngine engine(block);
  const int* const storage = engine.morphList.data();
  engine.erode_ncv_fast(engine.mask, 1, 0, 2);
  EXPECT_EQ(engine.morphList, (std::vector<int>{16, 17, 18, 23, 25, 30, 31, 32})) << "the ring around (3, 3)";
  EXPECT_EQ(engine.morphList.data(), storage) << "the capacity reserved at set-up suffices";
}

// ---- dilation -----------------------------------------------------------------------------------

std::string dilated(const Rows& rows, std::uint8_t set, std::uint8_t relabel, int passes) {
  MaskEngine engine(rows);
  EXPECT_EQ(engine.dilate_ncv_fast(engine.mask, set, relabel, passes), 1);
  return engine.drawn();
}

TEST(DilateList, LeavesTheShapeAndRelabelsIt) {
  EXPECT_EQ(dilated({".....", ".###.", ".###.", "....#"}, 255, 1, 2),
            picture({".....", ".111.", ".111.", "....1"}));
}

TEST(DilateList, LeavesTheMaskIfTheLabelIsTheSame) {
  EXPECT_EQ(dilated({"..#..", ".###.", "..#.#"}, 255, 255, 3), picture({"..#..", ".###.", "..#.#"}));
}

TEST(DilateList, RelabelsEvenWithoutPasses) {
  EXPECT_EQ(dilated({".##", "#.1"}, 255, 1, 0), picture({".11", "1.1"}));
  EXPECT_EQ(dilated({".##", "#.1"}, 255, 1, -4), picture({".11", "1.1"}));
}

TEST(DilateList, BytesOneBelowTheSetValueStay) {
  EXPECT_EQ(dilated({"z##z", "zzzz"}, 255, 1, 2), picture({"z11z", "zzzz"}));
  EXPECT_EQ(dilated({".11."}, 1, 7, 2), picture({".77."}));
}

TEST(DilateList, ExtremeValuesOfSetWrapHarmlessly) {
  // The byte below 0 is 255, which the mask holds beside the set pixels.
  EXPECT_EQ(dilated({"#..#", "11.1"}, 0, 5, 2), picture({"#55#", "1151"}));
  EXPECT_EQ(dilated({".#.z"}, 254, 0, 2), picture({".#.."}));
}

TEST(DilateList, RelabelsOtherRegionsToo) {
  EXPECT_EQ(dilated({"###", "###"}, 255, 3, 1), picture({"333", "333"})) << "no neighbour differs";
}

// A listed pixel counts with its changed value at once: every pixel whose left or upper neighbour was listed
// qualifies too, so the scan lists the whole block.
TEST(DilateList, PixelsListedInAScanMakeTheirSuccessorsQualify) {
  MaskEngine engine({"......", ".####.", ".####.", ".####.", "......"});
  engine.dilate_ncv_fast(engine.mask, 255, 255, 1);
  EXPECT_EQ(engine.morphList, (std::vector<int>{7, 8, 9, 10, 13, 14, 15, 16, 19, 20, 21, 22}));
}

// ---- missing mask or tables ---------------------------------------------------------------------

TEST(MorphologyList, MissingMaskIsRefused) {
  SizedEngine engine(4, 3, 1);
  EXPECT_EQ(engine.erode_ncv_fast(nullptr, 1, 0, 3), 0);
  EXPECT_EQ(engine.dilate_ncv_fast(nullptr, 255, 1, 2), 0);
}

TEST(MorphologyList, EngineWithoutNeighboursIsRefused) {
  kAMBLE engine;
  engine.numPixel = 4;
  Bytes mask(4, 1);
  EXPECT_EQ(engine.erode_ncv_fast(mask.data(), 1, 0, 3), 0);
  EXPECT_EQ(engine.dilate_ncv_fast(mask.data(), 1, 5, 2), 0);
  EXPECT_EQ(mask, Bytes(4, 1));
}

}  // namespace
}  // namespace lm::test
