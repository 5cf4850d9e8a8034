// One frame through the engine: the order of the steps, and the state after a refused frame.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <limits>

#include "tests/engine/camera.h"
#include "tests/support/capture.h"

namespace lm::test {
namespace {

TEST(FirstFrame, SizesTheEngineAndPrintsTheSize) {
  Camera engine;
  engine.szImgX = 640;  // as a configuration may have set it
  engine.szImgY = 480;
  const Printed printed = printedBy([&] { EXPECT_TRUE(engine.learnPlain(50, 3)); });
  EXPECT_EQ(printed, (Printed{"", "W, H, Pixels = 4, 3, 12\n"}));
  EXPECT_EQ(engine.szImgX, 4);
  EXPECT_EQ(engine.szImgY, 3);
  EXPECT_EQ(engine.numPixel, 12);
  EXPECT_EQ(engine.frmChn, 3);
  EXPECT_EQ(engine.frmCount, 1);
}

TEST(FirstFrame, LeavesNoForegroundAndSeedsTheModel) {
  Camera engine;
  ASSERT_TRUE(engine.learnPlain(50, 1));
  EXPECT_EQ(engine.drawn(engine.fgMask), picture({"....", "....", "...."}));
  EXPECT_EQ(engine.prevFgMask, nullptr);
  EXPECT_EQ(engine.rdDiff, nullptr) << "nothing was compared";
  EXPECT_EQ(engine.bgImg[11], 50);
  EXPECT_EQ(engine.bgModel[11].samples[19][0], 50);
}

TEST(FirstFrame, BecomesThePreviousFrame) {
  Camera engine;
  Bytes frame = plainFrame(4, 3, 3, 50);
  frame.back() = 77;
  ASSERT_TRUE(engine.learn(frame, 3));
  ASSERT_NE(engine.prevFrame, nullptr);
  EXPECT_EQ(Bytes(engine.prevFrame, engine.prevFrame + 36), frame);
  EXPECT_NE(engine.prevFrame, engine.curFrame);
}

TEST(FirstFrame, MovesTheLockedSegmentAndRemembersTheTime) {
  Camera engine;
  ASSERT_TRUE(engine.learnPlain(50, 1));
  EXPECT_EQ(engine.lockSegStart, 4);
  EXPECT_EQ(engine.lockSegEnd, 7);
  EXPECT_EQ(engine.prevTimestamp, 1000);
}

TEST(FirstFrame, IsTheOnlyOneThatPrints) {
  Camera engine;
  engine.learnPlain(50, 3);
  const Printed printed = printedBy([&] {
    engine.learnPlain(50, 3);
    engine.learnPlain(200, 3);
  });
  EXPECT_EQ(printed, (Printed{"", ""}));
}

TEST(Initialization, StoresTheSizeAndSeedsFromTheCurrentFrame) {
  kAMBLE engine;
  engine.frmChn = 1;
  put(engine.curFrame, Bytes{1, 2, 3, 4, 5, 6});
  bool ready = false;
  const Printed printed = printedBy([&] { ready = engine.initialization_ncv(3, 2); });
  EXPECT_TRUE(ready);
  EXPECT_EQ(printed, (Printed{"", "W, H, Pixels = 3, 2, 6\n"}));
  EXPECT_EQ(engine.bgModel.at(5).samples[0][0], 6);
  EXPECT_EQ(engine.frmCount, 0) << "only learnBg_ncv counts frames";
}

TEST(Initialization, WithoutAFrameIsRefused) {
  kAMBLE engine;
  engine.frmChn = 1;
  EXPECT_FALSE(engine.initialization_ncv(3, 2));
}

TEST(Initialization, EmptyFrameDoesNotCrash) {
  kAMBLE engine;
  engine.frmChn = 1;
  put(engine.curFrame, Bytes{});
  const Printed printed = printedBy([&] { engine.initialization_ncv(0, 0); });
  EXPECT_EQ(printed, (Printed{"", "W, H, Pixels = 0, 0, 0\n"}));
  EXPECT_TRUE(engine.bgModel.empty());
}

TEST(LaterFrame, IsClassifiedFromTheSecondOn) {
  Camera engine;
  engine.learnPlain(50, 3);
  Bytes frame = plainFrame(4, 3, 3, 50);
  std::fill_n(frame.begin() + 15, 6, std::uint8_t{200});  // pixels 5 and 6
  ASSERT_TRUE(engine.learn(frame, 3));
  EXPECT_EQ(engine.drawn(engine.fgMask), picture({"....", ".##.", "...."}));
  EXPECT_EQ(engine.frmCount, 2);
}

TEST(LaterFrame, MaskBecomesThePreviousMask) {
  Camera engine;
  engine.learnPlain(50, 1);
  Bytes frame = plainFrame(4, 3, 1, 50);
  frame[7] = 200;
  engine.learn(frame, 1);
  ASSERT_NE(engine.prevFgMask, nullptr);
  EXPECT_EQ(engine.drawn(engine.prevFgMask), picture({"....", "...#", "...."}));
  EXPECT_NE(engine.prevFgMask, engine.fgMask);
}

TEST(LaterFrame, DifferencesAreTakenAgainstTheFrameBefore) {
  Camera engine;
  engine.learnPlain(50, 1);
  engine.learnPlain(53, 1);
  EXPECT_EQ(engine.rdDiff[0], 3);
  engine.learnPlain(54, 1);
  EXPECT_EQ(engine.rdDiff[0], 1);
  EXPECT_EQ(engine.illumDiff[0], 4) << "against the background image of 50";
}

TEST(LaterFrame, ModelIsUpdatedWithTheMaskOfTheSameFrame) {
  Camera engine;
  engine.learnPlain(50, 1);
  // Background everywhere, 10 brighter than the background image: a lighting change.
  engine.learnPlain(60, 1);
  EXPECT_EQ(engine.drawn(engine.fgMask), picture({"....", "....", "...."}));
  EXPECT_EQ(engine.bgImg[0], 60);
  EXPECT_EQ(engine.bgModel[0].samples[0][0], 60);
  EXPECT_EQ(engine.illumRatio, 1.0F);
}

TEST(LaterFrame, PixelsOutsideTheRegionsStayBackgroundAndUntouched) {
  Camera engine;
  put(engine.roiMask, Bytes{0, 0, 0, 0, 1, 1, 1, 1, 0, 0, 0, 0});
  engine.learnPlain(50, 1);
  engine.learnPlain(200, 1);
  engine.learnPlain(60, 1);
  EXPECT_EQ(engine.bgModel[0].samples[0][0], 50);
  EXPECT_EQ(engine.bgImg[0], 50);
  EXPECT_EQ(engine.updTimer[0], 0);
  EXPECT_EQ(engine.fgLife[0], 0.0F);
  EXPECT_EQ(engine.minDist[0], 255U);
  engine.learnPlain(200, 1);
  EXPECT_EQ(engine.drawn(engine.fgMask), picture({"....", "####", "...."}));
}

TEST(LaterFrame, SkipFrameIsClearedByTheDifferences) {
  Camera engine;
  engine.learnPlain(50, 1);
  engine.skipFrame = true;
  engine.learnPlain(200, 1);
  EXPECT_FALSE(engine.skipFrame);
  EXPECT_EQ(engine.drawn(engine.fgMask), picture({"####", "####", "####"}));
}

TEST(LaterFrame, DoesNotCallRand) {
  const auto nextDrawAfter = [](int frames) {
    std::srand(5);
    Camera engine;
    for (int i = 0; i < frames; ++i) {
      engine.learnPlain(i % 2 == 0 ? 50 : 200, 3);
      engine.genFgObj_ncv(engine.fgMask);
    }
    return std::rand();
  };
  EXPECT_EQ(nextDrawAfter(1), nextDrawAfter(6));
}

TEST(LaterFrame, FrameCounterWraps) {
  Camera engine;
  engine.learnPlain(50, 1);
  engine.frmCount = std::numeric_limits<std::int32_t>::max();
  EXPECT_TRUE(engine.learnPlain(50, 1));
  EXPECT_EQ(engine.frmCount, std::numeric_limits<std::int32_t>::min());
  EXPECT_TRUE(engine.learnPlain(200, 1)) << "a negative count is a running engine";
  EXPECT_EQ(engine.drawn(engine.fgMask), picture({"####", "####", "####"}));
}

class LaterFrameWithout : public ::testing::TestWithParam<NamedPlane> {};

TEST_P(LaterFrameWithout, IsRefusedAndTouchesNoMemory) {
  Camera engine;
  engine.learnPlain(50, 3);
  engine.learnPlain(50, 3);
  GetParam().drop(engine);
  EXPECT_FALSE(engine.learnPlain(200, 3));
}

INSTANTIATE_TEST_SUITE_P(Pipeline, LaterFrameWithout,
                         ::testing::Values(NamedPlane{"fgMask", dropPlane<&kAMBLE::fgMask>},
                                           NamedPlane{"bgImg", dropPlane<&kAMBLE::bgImg>},
                                           NamedPlane{"roiMask", dropPlane<&kAMBLE::roiMask>},
                                           NamedPlane{"absorbMask", dropPlane<&kAMBLE::absorbMask>},
                                           NamedPlane{"updTimer", dropPlane<&kAMBLE::updTimer>},
                                           NamedPlane{"minDist", dropPlane<&kAMBLE::minDist>},
                                           NamedPlane{"fgLife", dropLife},
                                           NamedPlane{"nbrCursor", dropPlane<&kAMBLE::nbrCursor>},
                                           NamedPlane{"sampleCursor", dropPlane<&kAMBLE::sampleCursor>},
                                           NamedPlane{"refreshCount", dropPlane<&kAMBLE::refreshCount>}),
                         byName);

class LaterFrameWithMissing : public ::testing::TestWithParam<NamedPlane> {};

TEST_P(LaterFrameWithMissing, MakesThePlaneAgain) {
  Camera engine;
  engine.learnPlain(50, 3);
  engine.learnPlain(50, 3);
  GetParam().drop(engine);
  EXPECT_TRUE(engine.learnPlain(50, 3));
  EXPECT_TRUE(engine.learnPlain(200, 3));
  EXPECT_EQ(engine.drawn(engine.fgMask), picture({"####", "####", "####"}));
}

INSTANTIATE_TEST_SUITE_P(Pipeline, LaterFrameWithMissing,
                         ::testing::Values(NamedPlane{"curFrame", dropPlane<&kAMBLE::curFrame>},
                                           NamedPlane{"prevFrame", dropPlane<&kAMBLE::prevFrame>},
                                           NamedPlane{"rdDiff", dropPlane<&kAMBLE::rdDiff>},
                                           NamedPlane{"illumDiff", dropPlane<&kAMBLE::illumDiff>},
                                           NamedPlane{"prevFgMask", dropPlane<&kAMBLE::prevFgMask>}),
                         byName);

}  // namespace
}  // namespace lm::test
