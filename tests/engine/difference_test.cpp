// The two per-frame differences, on one channel per frame.
#include <gtest/gtest.h>
#include <malloc.h>

#include <algorithm>

#include "tests/support/engine_fixture.h"

namespace lm::test {
namespace {

// Two pixels whose channels differ from the previous frame by 10, 20, 30, 40 and from the background by 1, 2,
// 3, 4; the second pixel changes downwards.
struct ChannelEngine : SizedEngine {
  explicit ChannelEngine(int channels) : SizedEngine(2, 1, channels) {
    Bytes current;
    Bytes previous;
    Bytes background;
    for (const int sign : {1, -1}) {
      for (int c = 1; c <= channels; ++c) {
        current.push_back(100);
        previous.push_back(static_cast<std::uint8_t>(100 + sign * 10 * c));
        background.push_back(static_cast<std::uint8_t>(100 + sign * c));
      }
    }
    put(curFrame, current);
    put(prevFrame, previous);
    put(bgImg, background);
  }
};

struct ChannelCase {
  const char* name;
  int channels;
  std::vector<int> compared;  // channel of each frame
};
void PrintTo(const ChannelCase& cycle, std::ostream* out) { *out << cycle.name; }

class ChannelCycle : public ::testing::TestWithParam<ChannelCase> {};

TEST_P(ChannelCycle, ComparesOneChannelPerFrameInBothDifferences) {
  ChannelEngine engine(GetParam().channels);
  for (const int channel : GetParam().compared) {
    EXPECT_FALSE(engine.heuristic_ncv());
    const int temporal = 10 * (channel + 1);
    const int illumination = channel + 1;
    EXPECT_EQ(engine.rdDiff[0], temporal);
    EXPECT_EQ(engine.rdDiff[1], temporal);
    EXPECT_EQ(engine.illumDiff[0], illumination);
    EXPECT_EQ(engine.illumDiff[1], illumination);
  }
}

INSTANTIATE_TEST_SUITE_P(Difference, ChannelCycle,
                         ::testing::Values(ChannelCase{"oneChannel", 1, {0, 0, 0, 0}},
                                           ChannelCase{"threeChannels", 3, {0, 1, 2, 0, 1, 2, 0}},
                                           ChannelCase{"fourChannels", 4, {0, 1, 2, 0, 0, 1, 2, 0, 0}}),
                         byName);

TEST(Difference, ChannelCounterWrapsAtTheChannelCount) {
  ChannelEngine engine(4);
  std::vector<int> counters;
  for (int i = 0; i < 5; ++i) {
    engine.heuristic_ncv();
    counters.push_back(engine.diffChn);
  }
  EXPECT_EQ(counters, (std::vector<int>{1, 2, 3, 0, 1}));
}

TEST(Difference, BuffersAreMadeZeroFilledAlignedAndKept) {
  ChannelEngine engine(3);
  ASSERT_EQ(engine.rdDiff, nullptr);
  ASSERT_EQ(engine.illumDiff, nullptr);
  engine.heuristic_ncv();
  const std::uint8_t* const temporal = engine.rdDiff;
  const std::uint8_t* const illumination = engine.illumDiff;
  EXPECT_EQ(reinterpret_cast<std::uintptr_t>(temporal) % 32, 0U);
  EXPECT_EQ(reinterpret_cast<std::uintptr_t>(illumination) % 32, 0U);
  EXPECT_GE(malloc_usable_size(engine.illumDiff), 6U) << "as large as a frame";
  EXPECT_TRUE(std::all_of(illumination + 2, illumination + 6, [](int byte) { return byte == 0; }))
      << "one byte per pixel is used";
  engine.heuristic_ncv();
  EXPECT_EQ(engine.rdDiff, temporal);
  EXPECT_EQ(engine.illumDiff, illumination);
}

TEST(Difference, IlluminationIsNotComparedWhenItsHandlingIsOff) {
  ChannelEngine engine(3);
  engine.illumChange = false;
  engine.heuristic_ncv();
  EXPECT_NE(engine.rdDiff, nullptr);
  EXPECT_EQ(engine.illumDiff, nullptr);
  EXPECT_EQ(engine.diffChn, 1);
}

TEST(Difference, WithoutPreviousFrameEveryPixelCountsAsChanged) {
  SizedEngine engine(3, 2, 3);
  EXPECT_FALSE(engine.heuristic_ncv());
  ASSERT_NE(engine.rdDiff, nullptr);
  EXPECT_EQ(engine.drawn(engine.rdDiff), picture({"###", "###"}));
  EXPECT_EQ(engine.illumDiff, nullptr);
  EXPECT_EQ(engine.diffChn, 0) << "the channel stays";
}

TEST(Difference, WithoutPreviousFrameAnExistingDifferenceIsKept) {
  SizedEngine engine(3, 1, 1);
  put(engine.rdDiff, Bytes{1, 2, 3});
  engine.heuristic_ncv();
  EXPECT_EQ(engine.drawn(engine.rdDiff), picture({"123"}));
}

TEST(Difference, PreviousMaskStartsAtOneSoThatNoPixelTakesTheShortcut) {
  ChannelEngine engine(1);
  engine.heuristic_ncv();
  ASSERT_NE(engine.prevFgMask, nullptr);
  EXPECT_EQ(engine.drawn(engine.prevFgMask), picture({"11"}));
}

TEST(Difference, ExistingPreviousMaskIsKept) {
  ChannelEngine engine(1);
  put(engine.prevFgMask, Bytes{255, 0});
  engine.heuristic_ncv();
  EXPECT_EQ(engine.drawn(engine.prevFgMask), picture({"#."}));
}

TEST(Difference, MissingMaskIsMadeTogetherWithAMissingPreviousMask) {
  ChannelEngine engine(1);
  std::free(engine.fgMask);
  engine.fgMask = nullptr;
  engine.heuristic_ncv();
  ASSERT_NE(engine.fgMask, nullptr);
  EXPECT_EQ(engine.drawn(engine.fgMask), picture({".."}));
}

TEST(Difference, MissingMaskStaysMissingIfThePreviousMaskExists) {
  ChannelEngine engine(1);
  put(engine.prevFgMask, Bytes{255, 0});
  std::free(engine.fgMask);
  engine.fgMask = nullptr;
  engine.heuristic_ncv();
  EXPECT_EQ(engine.fgMask, nullptr);
}

TEST(Difference, OfALargerSizeThanTheModelIsNotComputed) {
  ChannelEngine engine(3);
  engine.szImgX = 20;
  engine.szImgY = 10;
  EXPECT_FALSE(engine.heuristic_ncv());
  EXPECT_EQ(engine.rdDiff, nullptr);
  EXPECT_EQ(engine.diffChn, 0);
}

TEST(Difference, OfASmallerSizeLeavesTheOtherPixelsUnchanged) {
  ChannelEngine engine(3);
  engine.szImgX = 1;
  engine.heuristic_ncv();
  EXPECT_EQ(engine.rdDiff[0], 10);
  EXPECT_EQ(engine.rdDiff[1], 0);
  EXPECT_EQ(engine.illumDiff[0], 1);
  EXPECT_EQ(engine.illumDiff[1], 0);
  EXPECT_EQ(engine.prevFgMask[1], 1) << "made for all pixels of the model";
}

// The byte before the first pixel is outside the plane.
TEST(Difference, NegativeChannelCounterMeansTheFirstChannel) {
  ChannelEngine engine(3);
  engine.diffChn = -2;
  for (const int next : {-1, 0, 1, 2}) {
    engine.heuristic_ncv();
    EXPECT_EQ(engine.rdDiff[0], next == 2 ? 20 : 10);
    EXPECT_EQ(engine.diffChn, next);
  }
}

TEST(Difference, SkipFrameIsCleared) {
  ChannelEngine engine(1);
  engine.skipFrame = true;
  EXPECT_FALSE(engine.heuristic_ncv());
  EXPECT_FALSE(engine.skipFrame);
}

class DifferenceWithout : public ::testing::TestWithParam<NamedPlane> {};

TEST_P(DifferenceWithout, TouchesNoMemory) {
  ChannelEngine engine(3);
  GetParam().drop(engine);
  EXPECT_FALSE(engine.heuristic_ncv());
}

INSTANTIATE_TEST_SUITE_P(Difference, DifferenceWithout,
                         ::testing::Values(NamedPlane{"curFrame", dropPlane<&kAMBLE::curFrame>},
                                           NamedPlane{"bgImg", dropPlane<&kAMBLE::bgImg>}),
                         byName);

}  // namespace
}  // namespace lm::test
