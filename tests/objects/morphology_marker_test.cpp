// The marker-based erosion and dilation. Their markers are ordinary values, so bytes that hold one beforehand
// change with them.
#include <gtest/gtest.h>

#include "tests/objects/mask_engine.h"

namespace lm::test {
namespace {

struct MorphCase {
  const char* name;
  std::uint8_t set, other;  // other: relabel or cleared
  int passes;
  Rows before, after;
};
void PrintTo(const MorphCase& morph, std::ostream* out) { *out << morph.name; }

class ErodeMarker : public ::testing::TestWithParam<MorphCase> {};

TEST_P(ErodeMarker, GivesThePicture) {
  const MorphCase& morph = GetParam();
  MaskEngine engine(morph.before);
  EXPECT_EQ(engine.erode_ncv(engine.mask, morph.set, morph.other, morph.passes), 1);
  EXPECT_EQ(engine.drawn(), picture(morph.after));
}

const Rows block{".......", ".#####.", ".#####.", ".#####.", ".#####.", ".#####.", "......."};
const Rows blockLessOne{".......", ".......", "..###..", "..###..", "..###..", ".......", "......."};
const Rows blockLessTwo{".......", ".......", ".......", "...#...", ".......", ".......", "......."};

INSTANTIATE_TEST_SUITE_P(
    Marker, ErodeMarker,
    ::testing::Values(
        MorphCase{"onePassPeelsOneLayer", 255, 0, 1, block, blockLessOne},
        MorphCase{"twoPassesPeelTwo", 255, 0, 2, block, blockLessTwo},
        MorphCase{"noPass", 255, 0, 0, block, block}, MorphCase{"negativePasses", 255, 0, -1, block, block},
        MorphCase{"frameEdgeDoesNotErode", 255, 0, 3, {"###", "###"}, {"###", "###"}},
        MorphCase{"lineDisappears", 255, 0, 1, {"....", "####", "...."}, {"....", "....", "...."}},
        MorphCase{"otherValuesDoNotErode", 255, 0, 2, {"777", "7#7", "777"}, {"777", "7#7", "777"}},
        // The marker is cleared + 1: bytes of it become cleared, whatever they border.
        MorphCase{"markerBytesAreCleared", 255, 0, 1, {"1777", "71#7", "7777"}, {".777", "7.#7", "7777"}},
        MorphCase{"clearedMarkerBytesErodeInTheNextPass",
                  255,
                  0,
                  2,
                  {"1777", "71#7", "7777"},
                  {".777", "7..7", "7777"}},
        MorphCase{"markerBytesStayWithoutAPass", 255, 0, 0, {"1777", "71#7"}, {"1777", "71#7"}},
        // With set 1 the marker is cleared + 2.
        MorphCase{"markerAvoidsTheSetValue", 1, 0, 1, {".1112", "3...."}, {".....", "3...."}},
        MorphCase{"wholeBlockWithSetOne", 1, 0, 1, {"....", ".11.", ".11.", "...."}, Rows(4, "....")},
        // Markers wrap like bytes: 254 + 2 is 0, 255 + 1 is 0, 255 + 2 is 1.
        MorphCase{"cleared254SetAbove", 255, 254, 1, {"zzzz", "z##.", "zzzz"}, {"zzzz", "zzzz", "zzzz"}},
        MorphCase{"cleared255", 7, 255, 1, {"####", "#77.", "####"}, {"####", "####", "####"}},
        MorphCase{"cleared255SetZero", 0, 255, 1, {"#####", "#...1", "#2..."}, {"#####", "#####", "#2..."}}),
    byName);

class DilateMarker : public ::testing::TestWithParam<MorphCase> {};

TEST_P(DilateMarker, GivesThePicture) {
  const MorphCase& morph = GetParam();
  MaskEngine engine(morph.before);
  EXPECT_EQ(engine.dilate_ncv(engine.mask, morph.set, morph.other, morph.passes), 1);
  EXPECT_EQ(engine.drawn(), picture(morph.after));
}

INSTANTIATE_TEST_SUITE_P(
    Marker, DilateMarker,
    ::testing::Values(
        MorphCase{"shapeStaysAndIsRelabelled", 255, 1, 2, {"....", ".##.", "...#"}, {"....", ".11.", "...1"}},
        MorphCase{"sameLabelLeavesTheMask", 255, 255, 2, {"....", ".##.", "...#"}, {"....", ".##.", "...#"}},
        MorphCase{"relabelsWithoutAPass", 255, 1, 0, {".##z"}, {".11z"}},
        MorphCase{"relabelsWithNegativePasses", 255, 1, -2, {".##z"}, {".11z"}},
        // The marker is set - 1: bytes of it become set, wherever they are.
        MorphCase{"markerBytesBecomeSet", 255, 255, 1, {"z..#", "..z."}, {"#..#", "..#."}},
        MorphCase{"markerBytesAreRelabelled", 255, 1, 1, {"z..#", "..z."}, {"1..1", "..1."}},
        MorphCase{"setOneSetsTheBackground", 1, 1, 1, {"....", ".1.7"}, {"1111", "1117"}},
        MorphCase{"setZeroHasMarker255", 0, 0, 1, {"#7.7"}, {".7.7"}},
        MorphCase{"set254", 254, 3, 1, {"y7z#"}, {"373#"}}),
    byName);

TEST(MorphologyMarker, MissingMaskIsRefused) {
  SizedEngine engine(4, 3, 1);
  EXPECT_EQ(engine.erode_ncv(nullptr, 1, 0, 3), 0);
  EXPECT_EQ(engine.dilate_ncv(nullptr, 255, 1, 2), 0);
}

TEST(MorphologyMarker, EmptyFrameLeavesTheMask) {
  kAMBLE engine;
  Bytes mask(1, 255);
  engine.erode_ncv(mask.data(), 255, 0, 3);
  engine.dilate_ncv(mask.data(), 255, 1, 2);
  EXPECT_EQ(mask, Bytes(1, 255));
}

}  // namespace
}  // namespace lm::test
