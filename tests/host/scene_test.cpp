#include <gtest/gtest.h>

#include "host/builtin_scene.h"
#include "host/scene_canvas.h"
#include "host/scene_street.h"
#include "tests/host/clips.h"

namespace {

using namespace lm::host;
using namespace std::chrono_literals;
using scene::Canvas;

// How many pixels differ by more than the noise of two frames can explain (12 at most).
int changed(const cv::Mat& a, const cv::Mat& b) {
  int count = 0;
  for (int y = 0; y < a.rows; ++y) {
    for (int x = 0; x < a.cols; ++x) {
      const auto p = a.at<cv::Vec3b>(y, x);
      const auto q = b.at<cv::Vec3b>(y, x);
      count += std::max({std::abs(p[0] - q[0]), std::abs(p[1] - q[1]), std::abs(p[2] - q[2])}) > 12 ? 1 : 0;
    }
  }
  return count;
}

const std::vector<Frame>& scene_frames() {
  static const std::vector<Frame> frames = [] {
    BuiltinScene source;
    return clips::read(source);
  }();
  return frames;
}

TEST(BuiltinScene, HasTheSameBytesEveryTime) {
  BuiltinScene again;
  const auto& frames = scene_frames();
  Frame frame;
  for (std::size_t i = 0; again.next(frame); ++i) {
    ASSERT_LT(i, frames.size());
    ASSERT_EQ(std::memcmp(frame.image.data, frames[i].image.data, frame.image.total() * 3), 0)
        << "frame " << i;
  }
}

TEST(BuiltinScene, IsAsItSays) {
  const BuiltinScene source;
  const auto& frames = scene_frames();
  ASSERT_EQ(frames.size(), 500U);
  EXPECT_EQ(clips::times_of(frames), clips::regular(500, 40ms));
  EXPECT_EQ(*source.info().duration, 20s);
  EXPECT_EQ(source.info().rate, 25);
  EXPECT_FALSE(source.info().live);
  for (const Frame& frame : frames) {
    ASSERT_EQ(frame.image.size(), source.info().size);
    ASSERT_TRUE(frame.image.isContinuous());
  }
}

TEST(BuiltinScene, OnlyNoiseMovesInTheFirstTwoSeconds) {
  const auto& frames = scene_frames();
  for (std::size_t i = 1; i < 50; ++i) {
    EXPECT_EQ(changed(frames[0].image, frames[i].image), 0) << "frame " << i;
    EXPECT_GT(cv::norm(frames[0].image, frames[i].image, cv::NORM_L1), 0) << "frame " << i;
  }
}

TEST(BuiltinScene, PeopleWalkTheCarStaysAndTheLampLightsItsPlaceOnly) {
  const auto& frames = scene_frames();
  EXPECT_GT(changed(frames[100].image, frames[110].image), 500) << "a walker";
  const cv::Rect car(150, 255, 200, 65);
  EXPECT_GT(changed(frames[0].image(car), frames[230].image(car)), 5000) << "the car has come";
  EXPECT_EQ(changed(frames[215].image(car), frames[235].image(car)), 0) << "and stands";
  const cv::Rect lit(440, 60, 50, 60);
  const cv::Rect dark(0, 0, 120, 70);
  EXPECT_EQ(changed(frames[298].image(lit), frames[299].image(lit)), 0);
  EXPECT_GT(changed(frames[299].image(lit), frames[300].image(lit)), 2000);
  EXPECT_EQ(changed(frames[299].image(dark), frames[300].image(dark)), 0);
}

TEST(Canvas, SinesAreRightToAFifthOfAPercent) {
  for (int angle = -2048; angle <= 2048; ++angle) {
    EXPECT_NEAR(scene::sine(angle) / 16384.0, std::sin(angle * CV_PI / 512), 0.002) << angle;
  }
}

TEST(Canvas, AShapeCoversItsPixelsAndSoftensItsEdge) {
  cv::Mat image(20, 20, CV_8UC3, cv::Scalar(0, 0, 0));
  Canvas canvas(image);
  canvas.rectangle(5, 5, 10, 10, {200, 200, 200});
  EXPECT_EQ(image.at<cv::Vec3b>(10, 10), cv::Vec3b(200, 200, 200));
  EXPECT_EQ(image.at<cv::Vec3b>(5, 5), cv::Vec3b(200, 200, 200));
  EXPECT_EQ(image.at<cv::Vec3b>(4, 10), cv::Vec3b(0, 0, 0));
  // From a quarter of pixel 16 on: three quarters of it are covered.
  canvas.polygon({{260, 0}, {320, 0}, {320, 320}, {260, 320}}, {200, 200, 200});
  EXPECT_NEAR(image.at<cv::Vec3b>(10, 16)[0], 150, 2);
}

TEST(Canvas, APolygonMayTurnEitherWay) {
  cv::Mat image(20, 20, CV_8UC3, cv::Scalar(0, 0, 0));
  Canvas(image).polygon({{16, 16}, {16, 160}, {160, 160}, {160, 16}}, {9, 9, 9});
  EXPECT_EQ(image.at<cv::Vec3b>(5, 5), cv::Vec3b(9, 9, 9));
}

TEST(Canvas, ShapesMayReachPastTheEdges) {
  cv::Mat image(20, 20, CV_8UC3, cv::Scalar(0, 0, 0));
  Canvas canvas(image);
  canvas.limb(scene::pixels(-50, -50), scene::pixels(70, 70), 64, 16, {250, 250, 250});
  canvas.shadow(scene::pixels(19, 19), 4000, 4000, 100);
  canvas.disc(scene::pixels(-100, 5), 100, {250, 250, 250});
  EXPECT_GT(image.at<cv::Vec3b>(10, 10)[0], 100);
}

}  // namespace
