// Classification of a frame into foreground and background.
#include <gtest/gtest.h>

#include <limits>

#include "tests/support/engine_fixture.h"

namespace lm::test {
namespace {

constexpr std::uint32_t nothingMatched = 999;

TEST(Classify, PixelOutsideTheRegionsIsBackgroundAndOtherwiseUntouched) {
  OnePixel engine({200}, {0});
  engine.roiMask[0] = 0;
  engine.fgMask[0] = 255;
  engine.minDist[0] = 44;
  engine.fgLife[0] = 500.0F;
  engine.absorbMask[0] = 7;
  EXPECT_TRUE(engine.recogFg_ncv());
  EXPECT_EQ(engine.fgMask[0], 0);
  EXPECT_EQ(engine.minDist[0], 44U);
  EXPECT_EQ(engine.fgLife[0], 500.0F);
  EXPECT_EQ(engine.absorbMask[0], 7);
}

TEST(Classify, UnchangedBackgroundKeepsItsMaskWithoutBeingCompared) {
  for (const int kept : {0, 255}) {
    OnePixel engine({200}, {0});
    engine.prevFgMask[0] = 0;
    engine.rdDiff[0] = 10;  // thrHeuris
    engine.fgMask[0] = static_cast<std::uint8_t>(kept);
    engine.minDist[0] = 44;
    EXPECT_TRUE(engine.recogFg_ncv());
    EXPECT_EQ(engine.fgMask[0], kept);
    EXPECT_EQ(engine.minDist[0], 44U);
  }
}

TEST(Classify, PixelThatChangedByMoreThanTheThresholdIsCompared) {
  OnePixel engine({200}, {0});
  engine.prevFgMask[0] = 0;
  engine.rdDiff[0] = 11;
  engine.recogFg_ncv();
  EXPECT_EQ(engine.fgMask[0], 255);
  EXPECT_EQ(engine.minDist[0], nothingMatched);
}

TEST(Classify, PixelThatWasNotBackgroundIsComparedEvenUnchanged) {
  for (const int before : {1, 255}) {
    OnePixel engine({200}, {0});
    engine.prevFgMask[0] = static_cast<std::uint8_t>(before);
    engine.recogFg_ncv();
    EXPECT_EQ(engine.fgMask[0], 255);
  }
}

TEST(Classify, PixelsAreClassifiedIndependently) {
  SizedEngine engine(3, 1, 1);
  engine.addFrames();
  put(engine.curFrame, Bytes{0, 100, 20});  // all samples are 0
  engine.recogFg_ncv();
  EXPECT_EQ(engine.drawn(engine.fgMask), picture({".#."}));
}

// ---- matching -----------------------------------------------------------------------------------

struct MatchCase {
  const char* name;
  Bytes pixel;
  Bytes rest;                                // in every slot that is not listed
  std::vector<std::pair<int, Bytes>> slots;  // the listed ones
  int needed;                                // minMatchNum
  int mask;
  std::uint32_t distance;
};
void PrintTo(const MatchCase& match, std::ostream* out) { *out << match.name; }

class Matching : public ::testing::TestWithParam<MatchCase> {};

TEST_P(Matching, GivesMaskAndSmallestDistance) {
  const MatchCase& match = GetParam();
  OnePixel engine(match.pixel, match.rest);
  for (const auto& [slot, bytes] : match.slots) {
    engine.setSlot(slot, bytes);
  }
  engine.minMatchNum = match.needed;
  EXPECT_TRUE(engine.recogFg_ncv());
  EXPECT_EQ(engine.fgMask[0], match.mask);
  EXPECT_EQ(engine.minDist[0], match.distance);
}

const Bytes farGrey{0};
const Bytes farColour{0, 0, 0};
const Bytes farFour{0, 0, 0, 0};

INSTANTIATE_TEST_SUITE_P(
    OneChannel, Matching,
    ::testing::Values(
        MatchCase{"nothingNear", {100}, farGrey, {}, 2, 255, nothingMatched},
        MatchCase{"radiusIsInclusive", {100}, farGrey, {{3, {80}}, {9, {120}}}, 2, 0, 20},
        MatchCase{"beyondRadius", {100}, farGrey, {{3, {79}}, {9, {121}}}, 2, 255, nothingMatched},
        MatchCase{"oneMatchIsTooFew", {100}, farGrey, {{3, {93}}}, 2, 255, 7},
        MatchCase{"oneMatchSuffices", {100}, farGrey, {{3, {93}}}, 1, 0, 7},
        MatchCase{"smallestOfTheMatches", {100}, farGrey, {{3, {95}}, {9, {109}}}, 2, 0, 5},
        MatchCase{"comparisonEndsAtTheCount", {100}, farGrey, {{0, {110}}, {1, {112}}, {2, {100}}}, 2, 0, 10},
        MatchCase{"firstAndLastSlot", {100}, farGrey, {{0, {104}}, {19, {103}}}, 2, 0, 3},
        MatchCase{"allTwenty", {100}, {100}, {}, 20, 0, 0},
        MatchCase{"nineteenOfTwenty", {100}, {101}, {{19, {0}}}, 20, 255, 1},
        MatchCase{"moreThanThereAre", {100}, {101}, {}, 21, 255, 1},
        // A count of 0 is reached at slot 0, whether it matches or not.
        MatchCase{"zeroNeededNoMatch", {100}, farGrey, {{1, {100}}}, 0, 0, nothingMatched},
        MatchCase{"zeroNeededMatch", {100}, {100}, {{0, {108}}}, 0, 0, 8},
        MatchCase{"lessThanZeroNeeded", {100}, farGrey, {}, -3, 0, nothingMatched}),
    byName);

INSTANTIATE_TEST_SUITE_P(
    ThreeChannels, Matching,
    ::testing::Values(
        MatchCase{"nothingNear", {100, 100, 100}, farColour, {}, 2, 255, nothingMatched},
        MatchCase{"distanceIsTheSum",
                  {100, 100, 100},
                  farColour,
                  {{2, {80, 120, 80}}, {4, {120, 80, 120}}},
                  2,
                  0,
                  60},
        MatchCase{"firstChannelTooFar", {100, 100, 100}, {121, 100, 100}, {}, 2, 255, nothingMatched},
        MatchCase{"secondChannelTooFar", {100, 100, 100}, {100, 79, 100}, {}, 2, 255, nothingMatched},
        MatchCase{"thirdChannelTooFar", {100, 100, 100}, {100, 100, 121}, {}, 2, 255, nothingMatched},
        MatchCase{"oneMatchIsTooFew", {100, 100, 100}, farColour, {{5, {101, 102, 103}}}, 2, 255, 6},
        MatchCase{
            "comparisonEndsAtTheCount", {9, 9, 9}, {9, 9, 9}, {{0, {10, 9, 9}}, {1, {9, 11, 9}}}, 2, 0, 1},
        MatchCase{"allTwenty", {100, 100, 100}, {100, 100, 101}, {}, 20, 0, 1},
        // Here the count is checked only after a match.
        MatchCase{"zeroNeededNoMatch", {100, 100, 100}, farColour, {}, 0, 255, nothingMatched},
        MatchCase{"zeroNeededMatch", {100, 100, 100}, farColour, {{6, {100, 100, 104}}}, 0, 0, 4}),
    byName);

INSTANTIATE_TEST_SUITE_P(
    FourChannels, Matching,
    ::testing::Values(MatchCase{"fourthByteNeverCounts", {50, 60, 70, 255}, {51, 62, 73, 0}, {}, 2, 0, 6},
                      MatchCase{
                          "thirdChannelTooFar", {50, 60, 70, 9}, {50, 60, 91, 9}, {}, 2, 255, nothingMatched},
                      MatchCase{"nothingNear", {100, 100, 100, 0}, farFour, {}, 2, 255, nothingMatched}),
    byName);

TEST(Classify, MatchRadiusIsThrMatch) {
  OnePixel engine({100}, {107});
  engine.thrMatch = 6;
  engine.recogFg_ncv();
  EXPECT_EQ(engine.fgMask[0], 255);
  engine.thrMatch = 7;
  engine.recogFg_ncv();
  EXPECT_EQ(engine.fgMask[0], 0);
}

TEST(Classify, NegativeRadiusMatchesNothing) {
  for (const Bytes& value : {Bytes{100}, Bytes{100, 100, 100}, Bytes{100, 100, 100, 100}}) {
    OnePixel engine(value, value);
    engine.thrMatch = -1;
    engine.recogFg_ncv();
    EXPECT_EQ(engine.fgMask[0], 255);
    EXPECT_EQ(engine.minDist[0], nothingMatched);
  }
}

class ClassifyWithout : public ::testing::TestWithParam<NamedPlane> {};

TEST_P(ClassifyWithout, IsRefused) {
  OnePixel engine({100, 100, 100}, {0, 0, 0});
  GetParam().drop(engine);
  EXPECT_FALSE(engine.recogFg_ncv());
}

INSTANTIATE_TEST_SUITE_P(Classify, ClassifyWithout,
                         ::testing::Values(NamedPlane{"curFrame", dropPlane<&kAMBLE::curFrame>},
                                           NamedPlane{"fgMask", dropPlane<&kAMBLE::fgMask>},
                                           NamedPlane{"prevFgMask", dropPlane<&kAMBLE::prevFgMask>},
                                           NamedPlane{"roiMask", dropPlane<&kAMBLE::roiMask>},
                                           NamedPlane{"rdDiff", dropPlane<&kAMBLE::rdDiff>},
                                           NamedPlane{"minDist", dropPlane<&kAMBLE::minDist>},
                                           NamedPlane{"fgLife", dropLife},
                                           NamedPlane{"absorbMask", dropPlane<&kAMBLE::absorbMask>}),
                         byName);

}  // namespace
}  // namespace lm::test
