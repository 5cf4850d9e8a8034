// Frames of other channel counts and sizes than the engine was made for.
#include <gtest/gtest.h>

#include <algorithm>
#include <new>
#include <tuple>

#include "tests/engine/camera.h"
#include "tests/support/capture.h"

namespace lm::test {
namespace {

const std::string channelMessage = "Error: input frame in a wrong channel number! \n";

// ---- channels -----------------------------------------------------------------------------------

class Preprocess : public ::testing::TestWithParam<int> {};

TEST_P(Preprocess, AcceptsOneThreeAndFourChannelsOnly) {
  const int channels = GetParam();
  const bool accepted = channels == 1 || channels == 3 || channels == 4;
  kAMBLE engine;
  const Bytes frame = plainFrame(4, 3, std::max(channels, 1), 9);
  int result = -1;
  const Printed printed = printedBy([&] { result = engine.preprocess_ncv(frame.data(), 4, 3, channels); });
  EXPECT_EQ(result, accepted ? channels : 0);
  EXPECT_EQ(printed, (Printed{"", accepted ? "" : channelMessage}));
  EXPECT_EQ(engine.frmChn, channels) << "stored before the count is checked";
}

INSTANTIATE_TEST_SUITE_P(Channels, Preprocess, ::testing::Values(-1, 0, 1, 2, 3, 4, 5, 8));

TEST(Channels, FrameIsCopiedEvenWhenItIsRefused) {
  kAMBLE engine;
  const Bytes frame{1, 2, 3, 4, 5, 6, 7, 8};
  engine.preprocess_ncv(frame.data(), 2, 2, 2);
  ASSERT_NE(engine.curFrame, nullptr);
  EXPECT_EQ(reinterpret_cast<std::uintptr_t>(engine.curFrame) % 32, 0U);
  EXPECT_EQ(Bytes(engine.curFrame, engine.curFrame + 8), frame);
}

TEST(Channels, CopyIsKeptWhileItIsLargeEnough) {
  kAMBLE engine;
  const Bytes frame(36, 5);
  engine.preprocess_ncv(frame.data(), 4, 3, 3);
  const std::uint8_t* const copy = engine.curFrame;
  engine.preprocess_ncv(frame.data(), 4, 3, 1);
  engine.preprocess_ncv(frame.data(), 4, 3, 3);
  EXPECT_EQ(engine.curFrame, copy);
}

TEST(Channels, CopyGrowsForAFrameThatNeedsMore) {
  kAMBLE engine;
  const Bytes two = plainFrame(4, 3, 2, 5);
  Bytes four = plainFrame(4, 3, 4, 6);
  four.back() = 7;
  engine.preprocess_ncv(two.data(), 4, 3, 2);
  EXPECT_EQ(engine.preprocess_ncv(four.data(), 4, 3, 4), 4);
  EXPECT_EQ(Bytes(engine.curFrame, engine.curFrame + 48), four);
  EXPECT_EQ(reinterpret_cast<std::uintptr_t>(engine.curFrame) % 32, 0U);
}

TEST(Channels, TwoChannelFrameFirstDoesNotAffectLaterThreeChannelFrames) {
  Camera engine;
  EXPECT_FALSE(engine.learnPlain(50, 2));
  EXPECT_EQ(engine.frmCount, 0);
  EXPECT_EQ(engine.fgMask, nullptr) << "no buffer was made";
  EXPECT_TRUE(engine.learnPlain(50, 3));
  EXPECT_TRUE(engine.learnPlain(200, 3));
  EXPECT_EQ(engine.frmCount, 2);
  EXPECT_EQ(engine.drawn(engine.fgMask), picture({"####", "####", "####"}));
}

TEST(Channels, RefusedFrameChangesOnlyTheCopyAndTheChannelCount) {
  Camera engine;
  engine.learnPlain(50, 3);
  engine.learnPlain(50, 3);
  const double rate = engine.frmRate;
  engine.numPeriodLock = 1;
  const Printed printed = printedBy([&] { EXPECT_FALSE(engine.learnPlain(200, 2)); });
  EXPECT_EQ(printed, (Printed{"", channelMessage}));
  EXPECT_EQ(engine.frmChn, 2);
  EXPECT_EQ(engine.curFrame[0], 200);
  EXPECT_EQ(engine.frmCount, 2);
  EXPECT_EQ(engine.prevFrame[0], 50);
  EXPECT_EQ(engine.frmRate, rate);
  EXPECT_EQ(engine.prevTimestamp, 1010);
  EXPECT_EQ(engine.lockSegEnd, 7);
  EXPECT_EQ(engine.drawn(engine.fgMask), picture({"....", "....", "...."}));
}

TEST(Channels, ValidFrameAfterARefusedOneProceeds) {
  Camera engine;
  engine.learnPlain(50, 3);
  engine.learnPlain(90, 2);
  ASSERT_TRUE(engine.learnPlain(200, 3));
  EXPECT_EQ(engine.rdDiff[0], 150) << "against the last accepted frame";
  EXPECT_EQ(engine.drawn(engine.fgMask), picture({"####", "####", "####"}));
}

// The planes have no room for five channels, and the model has no samples of two.
TEST(Channels, SingleOperationsAfterARefusedFrameDoNothing) {
  for (const int channels : {2, 5}) {
    Camera engine;
    engine.learnPlain(50, 3);
    engine.learnPlain(50, 3);
    EXPECT_FALSE(engine.learnPlain(200, channels));
    EXPECT_FALSE(engine.heuristic_ncv());
    EXPECT_EQ(engine.rdDiff[0], 0) << channels << " channels: nothing was compared";
    EXPECT_FALSE(engine.recogFg_ncv());
    EXPECT_FALSE(engine.updateModel_ncv());
    EXPECT_FALSE(engine.initModel_ncv());
    EXPECT_EQ(engine.drawn(engine.fgMask), picture({"....", "....", "...."}));
    EXPECT_EQ(engine.bgImg[0], 50);
    EXPECT_EQ(engine.bgModel[0].samples[0][0], 50);
  }
}

// ---- sizes that change --------------------------------------------------------------------------

TEST(ChangedSize, FrameThatNeedsMoreRoomIsRefused) {
  for (const auto& [width, height, channels] : {std::tuple{5, 3, 3}, {4, 4, 3}, {4, 3, 4}, {400, 300, 3}}) {
    Camera engine;
    engine.learnPlain(50, 3);
    engine.learnPlain(50, 3);
    EXPECT_FALSE(engine.learn(plainFrame(width, height, channels, 200), width, height, channels));
    EXPECT_EQ(engine.frmCount, 2);
    EXPECT_EQ(engine.prevFrame[0], 50);
    EXPECT_TRUE(engine.learnPlain(200, 3)) << "frames of the right size are still accepted";
    EXPECT_EQ(engine.drawn(engine.fgMask), picture({"####", "####", "####"}));
  }
}

TEST(ChangedSize, SmallerFrameOverwritesTheBeginningOnly) {
  Camera engine;
  engine.learnPlain(50, 1);
  ASSERT_TRUE(engine.learn(Bytes{200, 200, 200}, 3, 1, 1));
  EXPECT_EQ(engine.drawn(engine.fgMask), picture({"###.", "....", "...."}));
  EXPECT_EQ(engine.prevFrame[2], 200);
  EXPECT_EQ(engine.prevFrame[3], 50);
  EXPECT_EQ(engine.szImgX, 4);
  EXPECT_EQ(engine.frmCount, 2);
}

TEST(ChangedSize, SmallerFrameStoresThePreviousMaskOfItsOwnPixelsOnly) {
  Camera engine;
  engine.learnPlain(50, 1);
  ASSERT_TRUE(engine.learn(Bytes(7, 200), 7, 1, 1));
  EXPECT_EQ(engine.drawn(engine.fgMask), picture({"####", "###.", "...."}));
  EXPECT_EQ(Bytes(engine.prevFgMask, engine.prevFgMask + 12),
            (Bytes{255, 255, 255, 255, 255, 255, 255, 1, 1, 1, 1, 1}))
      << "1 is the plane's initial value";
}

TEST(ChangedSize, FewerChannelsAreAccepted) {
  Camera engine;
  engine.learnPlain(50, 3);
  engine.learnPlain(50, 3);
  engine.learnPlain(50, 3);  // the next difference would be on channel 2
  EXPECT_TRUE(engine.learnPlain(50, 1));
  EXPECT_EQ(engine.frmChn, 1);
  EXPECT_EQ(engine.diffChn, 0);
}

// ---- sizes whose product does not fit 32 bits ---------------------------------------------------

TEST(HugeSize, ProductThatWrapsToASmallCountIsLearnedWithThatManyPixels) {
  Camera engine;
  put(engine.roiMask, Bytes(65536, 1));
  const Bytes dark(65536, 50);
  const Bytes bright(65536, 200);
  bool learned = false;
  const Printed printed = printedBy([&] { learned = engine.learn(dark, 65536, 65537, 1); });
  EXPECT_TRUE(learned);
  EXPECT_EQ(printed, (Printed{"", "W, H, Pixels = 65536, 65537, 65536\n"}));
  ASSERT_TRUE(engine.learn(bright, 65536, 65537, 1));
  EXPECT_TRUE(std::all_of(engine.fgMask, engine.fgMask + 65536, [](int byte) { return byte == 255; }));
  EXPECT_TRUE(engine.genFgObj_ncv(engine.fgMask).empty());
}

TEST(HugeSize, ProductThatWrapsToZeroDoesNotCrash) {
  kAMBLE engine;
  const std::uint8_t pixel = 50;
  for (int frame = 0; frame < 3; ++frame) {
    engine.learnBg_ncv(&pixel, 65536, 65536, 1);
  }
  EXPECT_EQ(engine.numPixel, 0);
}

TEST(HugeSize, ProductThatWrapsBelowZeroIsRefusedAsAFrame) {
  kAMBLE engine;
  const std::uint8_t pixel = 50;
  EXPECT_FALSE(engine.learnBg_ncv(&pixel, 46341, 46341, 1));  // 2147488281
  EXPECT_EQ(engine.frmCount, 0);
}

TEST(HugeSize, ProductThatWrapsBelowZeroThrowsFromTheSetUp) {
  kAMBLE engine;
  engine.frmChn = 1;
  const Printed printed =
      printedBy([&] { EXPECT_THROW(engine.initialization_ncv(46341, 46341), std::bad_alloc); });
  EXPECT_EQ(printed, (Printed{"", "W, H, Pixels = 46341, 46341, -2147479015\n"}));
}

// ---- regions smaller than the frame -------------------------------------------------------------

TEST(SmallRegionMask, CountsAsOutsideBeyondItsEnd) {
  kAMBLE engine;
  std::vector<std::string> settings{"frmW 4", "frmH 2"};
  std::vector<polygon> whole{polygon{"all", {{-1, -1}, {9, -1}, {9, 9}, {-1, 9}}, nullptr}};
  std::vector<polygon> none;
  engine.setParam(settings, whole, none);
  const Bytes dark = plainFrame(4, 3, 1, 50);
  const Bytes bright = plainFrame(4, 3, 1, 200);
  ASSERT_TRUE(engine.learnBg_ncv(dark.data(), 4, 3, 1));
  ASSERT_TRUE(engine.learnBg_ncv(bright.data(), 4, 3, 1));
  EXPECT_EQ(drawing(engine.fgMask, 12, 4), picture({"####", "####", "...."}));
}

TEST(SmallRegionMask, ExtractionReadsNeitherMaskBeyondItsEnd) {
  kAMBLE engine;
  std::vector<std::string> settings{"frmW 4", "frmH 2"};
  std::vector<polygon> whole{polygon{"all", {{-1, -1}, {99, -1}, {99, 99}, {-1, 99}}, nullptr}};
  std::vector<polygon> none;
  engine.setParam(settings, whole, none);
  const Bytes frame = plainFrame(40, 20, 1, 50);
  ASSERT_TRUE(engine.learnBg_ncv(frame.data(), 40, 20, 1));
  engine.thrCcPxl2 = 1;
  for (std::ptrdiff_t y = 5; y < 15; ++y) {
    std::fill_n(engine.fgMask + y * 40 + 5, 20, std::uint8_t{255});
  }
  EXPECT_EQ(engine.genFgObj_ncv(engine.fgMask).size(), 1U);
}

TEST(SmallRegionMask, OfNoPixelsGrowsWithTheFirstFrameToo) {
  kAMBLE engine;
  std::vector<std::string> noSize;
  std::vector<polygon> whole{polygon{"all", {{-1, -1}, {99, -1}, {99, 99}, {-1, 99}}, nullptr}};
  std::vector<polygon> none;
  engine.setParam(noSize, whole, none);
  const Bytes frame = plainFrame(40, 20, 1, 50);
  ASSERT_TRUE(engine.learnBg_ncv(frame.data(), 40, 20, 1));
  engine.thrCcPxl2 = 1;
  for (std::ptrdiff_t y = 5; y < 15; ++y) {
    std::fill_n(engine.fgMask + y * 40 + 5, 20, std::uint8_t{255});
  }
  EXPECT_EQ(engine.genFgObj_ncv(engine.fgMask).size(), 1U);
}

}  // namespace
}  // namespace lm::test
