#include <gtest/gtest.h>

#include <cstring>
#include <map>
#include <set>

#include "host/source/scene/builtin_scene.h"
#include "host/source/scene/scene_canvas.h"
#include "host/source/scene/scene_street.h"

namespace {

using namespace lm::host::source;
using namespace lm::host::source::scene;
using namespace std::chrono_literals;
using scene::Canvas;

// The number of pixels that differ by more than noise can explain (12 at most, between two frames).
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

TEST(BuiltinScene, HasTheSameBytesEveryTimeAndIsAsItSays) {
  BuiltinScene source;
  BuiltinScene again;
  int number = 0;
  for (Frame frame, other; source.next(frame); ++number) {
    ASSERT_TRUE(again.next(other));
    ASSERT_EQ(frame.image.size(), source.info().size);
    ASSERT_TRUE(frame.image.isContinuous());
    ASSERT_EQ(std::memcmp(frame.image.data, other.image.data, frame.image.total() * 3), 0)
        << "frame " << number;
    ASSERT_EQ(frame.time, number * 40ms);
  }
  EXPECT_EQ(number, 500);
  EXPECT_EQ(*source.info().duration, 20s);
  EXPECT_EQ(source.info().rate, 25);
  EXPECT_FALSE(source.info().live);
}

TEST(BuiltinScene, OnlyNoiseMovesInTheFirstTwoSeconds) {
  BuiltinScene source;
  Frame first;
  Frame frame;
  source.next(first);
  for (int number = 1; number < 50; ++number) {
    source.next(frame);
    EXPECT_EQ(changed(first.image, frame.image), 0) << "frame " << number;
    EXPECT_GT(cv::norm(first.image, frame.image, cv::NORM_L1), 0) << "frame " << number;
  }
}

TEST(BuiltinScene, PeopleWalkTheCarStaysAndTheLampLightsItsPlaceOnly) {
  BuiltinScene source;
  std::map<int, cv::Mat> at;
  Frame frame;
  for (int number = 0; number <= 300 && source.next(frame); ++number) {
    if (std::set{0, 100, 110, 215, 230, 235, 298, 299, 300}.contains(number)) at[number] = frame.image;
  }
  EXPECT_GT(changed(at[100], at[110]), 500) << "a walker";
  const cv::Rect car(150, 255, 200, 65);
  EXPECT_GT(changed(at[0](car), at[230](car)), 5000) << "the car has come";
  EXPECT_EQ(changed(at[215](car), at[235](car)), 0) << "and stands";
  const cv::Rect lit(440, 60, 50, 60);
  const cv::Rect dark(0, 0, 120, 70);
  EXPECT_EQ(changed(at[298](lit), at[299](lit)), 0);
  EXPECT_GT(changed(at[299](lit), at[300](lit)), 2000);
  EXPECT_EQ(changed(at[299](dark), at[300](dark)), 0);
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
  // The left edge is at a quarter of pixel 16: three quarters of it are covered.
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
