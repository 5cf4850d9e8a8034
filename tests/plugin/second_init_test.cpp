// A detector that is configured again for frames of another shape. The engine keeps the size of the first
// frame and the tables made for it.
#include <gtest/gtest.h>

#include <algorithm>

#include "engine/kamble.h"
#include "plugin/detector.h"
#include "tests/plugin/scene.h"
#include "tests/support/capture.h"

namespace lm::test {
namespace {

class SecondInit : public ::testing::Test {
 protected:
  SecondInit() { configure({100, 50, 1}); }
  ~SecondInit() override {
    // A second configuration replaces the masks of the first without freeing them.
    for (std::uint8_t* mask : dropped_) delete[] mask;
  }

  void configure(const FrameSize& size) {
    if (detector_.engine != nullptr) dropped_.push_back(detector_.engine->roiInclude.at(0).mask);
    ASSERT_TRUE(detector_.init(documentFor(size).c_str()));
  }

  void learn(const Bytes& frame) {
    int length = -1;
    time_ += 40;
    detector_.frameProc(frame.data(), std::to_string(time_).c_str(), &length);
  }

  lightMotion detector_;
  const Bytes dark_ = Bytes(5000, 50);

 private:
  const Capture err_{stderr};
  std::vector<std::uint8_t*> dropped_;
  int time_ = 1000;
};

TEST_F(SecondInit, OfTallerFramesReleasesOnlyTheExistingLabelRows) {
  learn(dark_);
  ASSERT_NE(detector_.engine->labelRows, nullptr);
  configure({50, 100, 1});
  detector_.terminate();
  EXPECT_EQ(detector_.engine, nullptr);
}

// Neighbours are those of the first frame, 100 pixels wide. After seeding, a pixel's next neighbour is one
// column to the right and two rows below. Two
// rows of 100 pixels below the 32 pixels from 4864 on lie outside the frame.
TEST_F(SecondInit, OfRotatedFramesUsesTheNeighboursOfTheFirstFrame) {
  learn(dark_);
  configure({50, 100, 1});
  Bytes brighter = dark_;
  for (const std::size_t pixel : {3050, 3050 + 201}) brighter[pixel] = 58;
  std::fill_n(brighter.begin() + 4864, 32, std::uint8_t{58});
  learn(brighter);
  EXPECT_EQ(detector_.engine->frmCount, 2);
  EXPECT_EQ(detector_.engine->bgImg[3050], 58) << "written: its neighbour changed too";
  EXPECT_EQ(detector_.engine->bgImg[3050 + 201], 50) << "not written: its neighbour did not change";
}

// A host may make the buffers for another size and leave numPixel as it is.
TEST_F(SecondInit, FrameIsLeftOutWhileThePlanesHoldFewerPixels) {
  learn(dark_);
  kAMBLE& engine = *detector_.engine;
  engine.destoryBuffer();
  engine.szImgX = 10;
  engine.szImgY = 5;
  ASSERT_TRUE(engine.initBuffer_ncv());
  std::fill_n(detector_.fgMaskCopy, 5000, std::uint8_t{9});
  learn(dark_);
  EXPECT_EQ(detector_.fgMaskCopy[0], 9) << "nothing was copied";
  EXPECT_EQ(detector_.fgMaskCopy[4999], 9);
}

// A refused configuration still sets the frame size, so the frames of a host that ignores the refusal are
// learned.
TEST(RefusedInit, FollowedByFramesThenByAConfigurationForLargerFrames) {
  const Capture out(stdout);
  const Capture err(stderr);
  lightMotion detector;
  ASSERT_FALSE(detector.init(documentFor({10, 4, 1}, "", "").c_str()));
  const Bytes frame(40, 50);
  int length = -1;
  detector.frameProc(frame.data(), "1000", &length);
  ASSERT_EQ(detector.engine->frmCount, 1);
  ASSERT_TRUE(detector.init(documentFor({100, 40, 1}).c_str()));
  const std::uint8_t* const mask = detector.engine->roiMask;
  EXPECT_EQ(std::count(mask, mask + 4000, 1), 4000);
}

}  // namespace
}  // namespace lm::test
