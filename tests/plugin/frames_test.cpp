// Frames and their results.
#include <gtest/gtest.h>

#include <algorithm>

#include "engine/kamble.h"
#include "plugin/detector.h"
#include "tests/plugin/scene.h"
#include "tests/support/capture.h"
#include "tests/support/thrown.h"

namespace lm::test {
namespace {

const std::string refusedChannels = "Error: input frame in a wrong channel number! \n";

// A region over the full height, from one fraction of the width to another.
std::string strip(const std::string& left, const std::string& right) {
  const auto point = [](const std::string& x, const std::string& y) {
    return R"({"x":")" + x + R"(","y":")" + y + "\"}";
  };
  return R"({"points":[)" + point(left, "-1") + "," + point(right, "-1") + "," + point(right, "2") + "," +
         point(left, "2") + "]}";
}

class Frames : public ::testing::Test {
 protected:
  void start(const FrameSize& size = smallGrey, const std::string& more = "",
             const std::string& regions = wholeFrame) {
    size_ = size;
    ASSERT_TRUE(detector_.init(documentFor(size, more, regions).c_str()));
  }

  // Passes a frame and returns the reported length, which must be that of the text for the host.
  int feed(const std::vector<Rect>& objects, const char* timestamp = "1000") {
    int length = -77;
    EXPECT_EQ(detector_.frameProc(frameWith(size_, objects).data(), timestamp, &length), 1);
    EXPECT_EQ(static_cast<std::size_t>(length), fetched().size());
    return length;
  }

  std::string fetched() {
    std::vector<char> out(4096, 'x');
    EXPECT_EQ(detector_.getRes(out.data()), 1);
    return out.data();
  }

  lightMotion detector_;
  FrameSize size_ = smallGrey;
  Capture err_{stderr};
};

TEST_F(Frames, TheFirstFrameHasNoBoxes) {
  start();
  EXPECT_EQ(feed({block}), 0);
  EXPECT_EQ(fetched(), "");
  EXPECT_EQ(err_.text(), "W, H, Pixels = 64, 32, 2048\n");
}

TEST_F(Frames, AnObjectThatAppearsGivesItsBoxAndTheTimestampAsGiven) {
  start();
  feed({});
  EXPECT_GT(feed({block}, "  1040 ms"), 0);
  EXPECT_EQ(fetched(), resultOf(blockBox, "  1040 ms"));
  ASSERT_EQ(detector_.objList.size(), 1U);
  EXPECT_EQ(detector_.objList[0].x, 0.28125F);
}

TEST_F(Frames, ColourFramesOf3And4BytesPerPixelGiveTheSameBox) {
  for (const int channels : {3, 4}) {
    detector_.terminate();
    start({64, 32, channels});
    feed({});
    EXPECT_GT(feed({block}, "1"), 0) << channels;
    EXPECT_EQ(fetched(), resultOf(blockBox, "1"));
  }
}

TEST_F(Frames, BoxesComeInTheOrderOfTheObjectsFirstPixels) {
  start();
  feed({});
  // Left object, lower: columns 7 to 12, rows 13 to 22 remain; x 6, y 12, width 8, height 12.
  // Right object, higher: columns 43 to 52, rows 7 to 12 remain; x 42, y 6, width 12, height 8.
  const Rect left{4, 10, 12, 16};
  const Rect right{40, 4, 16, 12};
  feed({left, right}, "5");
  EXPECT_EQ(fetched(), resultOf(R"({"height":0.25,"inRoi":[],"width":0.1875,"x":0.65625,"y":0.1875},)"
                                R"({"height":0.375,"inRoi":[],"width":0.125,"x":0.09375,"y":0.375})",
                                "5"));
}

TEST_F(Frames, AFrameWithoutObjectsClearsTheResultOfThePreviousFrame) {
  start();
  feed({});
  ASSERT_GT(feed({block}), 0);
  EXPECT_EQ(feed({}), 0);
  EXPECT_EQ(fetched(), "");
  EXPECT_EQ(detector_.resText, "");
  EXPECT_TRUE(detector_.objList.empty());
  EXPECT_GT(feed({block}), 0);
}

TEST_F(Frames, UnknownTimesUseTheWallClockAndAreReportedAsGiven) {
  start();
  feed({}, "0");
  EXPECT_EQ(detector_.engine->curTimestamp, 0);
  feed({block}, "-40");
  EXPECT_EQ(detector_.engine->curTimestamp, -1);
  EXPECT_EQ(detector_.engine->prevTimestamp, -1);
  EXPECT_EQ(fetched(), resultOf(blockBox, "-40"));
}

TEST_F(Frames, ObjectsOutsideTheRegionsOfInterestAreNotReported) {
  start(smallGrey, "", strip("-1", "0.2"));
  feed({});
  EXPECT_EQ(feed({block}), 0);
}

TEST_F(Frames, ObjectsAreClippedAtTheBorderOfARegion) {
  // Columns 0 to 32 count, so 16 to 32 are foreground and 19 to 29 remain: width 13, 13/64 = 0.203125.
  start(smallGrey, "", strip("-1", "0.5"));
  feed({});
  feed({block}, "9");
  EXPECT_EQ(fetched(),
            resultOf(R"({"height":0.375,"inRoi":[],"width":0.203125,"x":0.28125,"y":0.3125})", "9"));
}

TEST_F(Frames, ObjectsInsideAnExcludedRegionAreNotReported) {
  start(smallGrey, R"(,"ror":[)" + strip("0.2", "0.9") + "]");
  feed({});
  EXPECT_EQ(feed({block}), 0);
}

// ---- static life --------------------------------------------------------------------------------

// Frames in which an object that appears and stays still has a box, at 25 frames per second.
class StillObject : public Frames {
 protected:
  int framesWithBoxes(const std::string& setting) {
    start(smallGrey, setting);
    int frames = 0;
    for (int number = 0; number < 200; ++number) {
      const std::string timestamp = std::to_string(1 + 40 * number);
      if (feed(number == 0 ? std::vector<Rect>{} : std::vector{block}, timestamp.c_str()) > 0) ++frames;
    }
    return frames;
  }
};

// Its life is 0 in the first frame, because it changed, and gains 1 in each further one. Frames are
// foreground until life exceeds 3 s x 25 = 75: 1 + 76 frames.
TEST_F(StillObject, StaysFor3SecondsByDefault) { EXPECT_EQ(framesWithBoxes(""), 77); }
TEST_F(StillObject, StaysAsByDefaultWhenAPositiveLifeIsRefused) {
  EXPECT_EQ(framesWithBoxes(R"(,"lifeStatic":"1")"), 77);
}
TEST_F(StillObject, IsBackgroundAsSoonAsItIsStillWithALifeOf0) {
  EXPECT_EQ(framesWithBoxes(R"(,"lifeStatic":"0")"), 2);
}
TEST_F(StillObject, IsNeverFoundWithANegativeLife) { EXPECT_EQ(framesWithBoxes(R"(,"lifeStatic":"-1")"), 0); }

// ---- the mask copy ------------------------------------------------------------------------------

TEST_F(Frames, TheMaskCopyIsMadeAtTheFirstFrameAlignedAndKept) {
  start();
  EXPECT_EQ(detector_.fgMaskCopy, nullptr);
  feed({});
  const std::uint8_t* const copy = detector_.fgMaskCopy;
  ASSERT_NE(copy, nullptr);
  EXPECT_EQ(reinterpret_cast<std::uintptr_t>(copy) % 32, 0U);
  feed({block});
  feed({});
  EXPECT_EQ(detector_.fgMaskCopy, copy);
}

TEST_F(Frames, ObjectExtractionChangesTheCopyAndNotTheEnginesMask) {
  start();
  feed({});
  feed({block});
  const auto marked = [](const std::uint8_t* mask, std::uint8_t value) {
    return std::count(mask, mask + smallGrey.width * smallGrey.height, value);
  };
  EXPECT_EQ(marked(detector_.engine->fgMask, 255), 20 * 16);
  EXPECT_EQ(marked(detector_.fgMaskCopy, 255), 0);
  EXPECT_EQ(marked(detector_.fgMaskCopy, 1), 14 * 10);  // three layers less on every side
}

// ---- frames that are refused --------------------------------------------------------------------

TEST_F(Frames, AChannelCountRefusedBeforeAnyFrameWasAcceptedGivesNoBoxes) {
  for (const int channels : {2, 5}) {
    detector_.terminate();
    start({64, 32, channels});
    detector_.objList.resize(1);  // as an earlier frame would leave it
    const Printed printed = printedBy([&] {
      EXPECT_EQ(feed({}), 0);
      EXPECT_EQ(feed({block}), 0);
    });
    EXPECT_EQ(printed, (Printed{"", refusedChannels + refusedChannels}));
    EXPECT_TRUE(detector_.objList.empty());
    EXPECT_EQ(detector_.engine->frmCount, 0);
    EXPECT_EQ(detector_.engine->fgMask, nullptr);
  }
}

TEST_F(Frames, FramesAfterARefusedFirstOneAreProcessed) {
  start({64, 32, 2});
  feed({});
  detector_.frmChn = size_.channels = 3;
  feed({});
  EXPECT_GT(feed({block}, "2"), 0);
  EXPECT_EQ(fetched(), resultOf(blockBox, "2"));
}

TEST_F(Frames, ARefusedFrameRepeatsTheObjectsOfTheLastMask) {
  start({64, 32, 3});
  feed({});
  feed({block});
  detector_.frmChn = size_.channels = 2;
  EXPECT_GT(feed({}, "3"), 0);
  EXPECT_EQ(fetched(), resultOf(blockBox, "3"));
  detector_.frmChn = size_.channels = 3;
  EXPECT_EQ(feed({}, "4"), 0);
}

TEST_F(Frames, ATimestampThatThrowsClearsTheResultFirst) {
  start();
  feed({});
  ASSERT_GT(feed({block}), 0);
  int length = -77;
  const Bytes frame = frameWith(smallGrey, {});
  EXPECT_EQ(thrownBy([&] { detector_.frameProc(frame.data(), "x", &length); }),
            "std::invalid_argument: stoll");
  EXPECT_EQ(length, 0);
  EXPECT_EQ(detector_.resText, "");
  EXPECT_EQ(detector_.engine->frmCount, 2);
}

}  // namespace
}  // namespace lm::test
