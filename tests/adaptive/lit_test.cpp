// Which part of the foreground is the ground in another light. Rows and columns are those of the half size.
#include "host/detector/lit.h"

#include <gtest/gtest.h>

#include <opencv2/imgproc.hpp>

#include "host/detector/ground.h"
#include "tests/adaptive/scene.h"

namespace lm::host::detector {
namespace {

const cv::Size kSize(120, 90);
const cv::Rect kPlace(30, 20, 50, 40);
const cv::Rect kInside(36, 26, 38, 28);  // without its edge

class Lit : public testing::Test {
 protected:
  // The ground, and in a place what `change` makes of it.
  template <typename Change>
  Parts parts(Change change, double sigma = 1) {
    cv::Mat scene = ground_.clone();
    cv::Mat place = scene(kPlace);
    change(place);
    test::Camera camera(sigma / 2, 7);
    cv::Mat ground;
    test::Camera(0.45 * sigma / 2, 8).picture(ground_).convertTo(ground, CV_16S, Ground::kOne);
    cv::Mat foreground = cv::Mat::zeros(kSize, CV_8U);
    foreground(kPlace) = 255;
    return parts_of(camera.picture(scene), ground, foreground, sigma);
  }
  static double share(const cv::Mat& mask, const cv::Rect& where = kInside) {
    return cv::countNonZero(mask(where)) / static_cast<double>(where.area());
  }

  cv::Mat ground_ = test::ground(kSize, 5);
};

TEST_F(Lit, IsTheGroundInAnyLight) {
  for (const double gain : {0.5, 0.7, 0.85, 1.2, 1.6}) {
    const Parts found = parts([&](cv::Mat& place) { place *= gain; });
    EXPECT_GT(share(found.light), 0.95) << gain;
    EXPECT_EQ(share(found.object), 0) << gain;
  }
}

TEST_F(Lit, IsLightThatFallsOffGradually) {
  const Parts found = parts([](cv::Mat& place) {
    for (int x = 0; x < place.cols; ++x) place.col(x) *= 1 + 0.9 * x / place.cols;
  });
  EXPECT_GT(share(found.light), 0.95);
}

TEST_F(Lit, IsNothingDarkerThanAShadow) {
  const Parts found = parts([](cv::Mat& place) { place *= 0.25; });
  EXPECT_EQ(share(found.light), 0);
  EXPECT_GT(share(found.object), 0.95);
}

// As bright as the ground, with a texture of its own.
TEST_F(Lit, IsNoOtherTexture) {
  const cv::Mat other = test::ground(kSize, 6)(kPlace) * 0.7;
  const Parts found = parts([&](cv::Mat& place) { other.copyTo(place); });
  EXPECT_LT(share(found.light), 0.15);
  EXPECT_GT(share(found.object), 0.3);
}

TEST_F(Lit, IsNoSmoothThing) {
  const Parts found = parts([](cv::Mat& place) { place.setTo(cv::Scalar::all(70)); });
  EXPECT_LT(share(found.light), 0.15);
}

// The texture shines through, as through tinted glass, but the channels do not agree: 0.7, 0.8 and 0.9.
TEST_F(Lit, HasTheColoursOfTheGround) {
  const Parts found = parts([](cv::Mat& place) { cv::multiply(place, cv::Scalar(0.7, 0.8, 0.9), place); });
  EXPECT_EQ(share(found.light), 0);
  EXPECT_GT(share(found.object), 0.95);
}

// Without texture nothing is decided but by the gain: that of the ground around is no object.
TEST_F(Lit, IsWhatHasTheGainOfTheGroundAround) {
  ground_.setTo(cv::Scalar::all(100));
  EXPECT_GT(share(parts([](cv::Mat&) {}).light), 0.95);
  const Parts darker = parts([](cv::Mat& place) { place *= 0.7; });
  EXPECT_EQ(share(darker.light), 0);
  EXPECT_LT(share(darker.object), 0.05);
}

// A smooth thing in the middle of a shadow, darker than that.
TEST_F(Lit, EndsAtASteepOutline) {
  const Parts found = parts([](cv::Mat& place) {
    place *= 0.8;
    place(cv::Rect(20, 12, 12, 16)).setTo(cv::Scalar::all(50));
  });
  const cv::Rect thing(kPlace.x + 23, kPlace.y + 15, 6, 10);
  EXPECT_EQ(share(found.light, thing), 0);
  EXPECT_GT(share(found.light, cv::Rect(kPlace.x + 3, kPlace.y + 3, 14, 34)), 0.95);
}

// A picture that is white has neither texture nor colour.
TEST_F(Lit, IsUndecidedWhereThePictureIsSaturated) {
  const Parts found = parts([](cv::Mat& place) { place.setTo(cv::Scalar::all(255)); });
  EXPECT_EQ(share(found.light), 0);
  EXPECT_EQ(share(found.object), 0);
}

TEST(Ground, IsTheAverageOfWhereNothingMoves) {
  using namespace std::chrono_literals;
  Ground ground;
  const auto level = [&](int x) { return ground.picture().at<cv::Vec3s>(30, x)[0] / double{Ground::kOne}; };
  const cv::Mat nothing = cv::Mat::zeros(15, 20, CV_8U);
  cv::Mat left = nothing.clone();
  left.colRange(0, 8) = 255;  // up to column 31
  ground.learn(cv::Mat(120, 160, CV_8UC3, cv::Scalar::all(60)), 0s, nothing);
  EXPECT_EQ(level(0), 60);
  ground.learn(cv::Mat(120, 160, CV_8UC3, cv::Scalar::all(124)), 100ms, left);
  EXPECT_EQ(level(79), 60) << "not due";
  ground.learn(cv::Mat(120, 160, CV_8UC3, cv::Scalar::all(124)), 500ms, left);
  EXPECT_EQ(level(10), 60) << "something moves there";
  EXPECT_EQ(level(31), 60);
  EXPECT_NEAR(level(79), 92, 0.02) << "half of 60 and 124";
  for (int x = 31; x < 79; ++x) EXPECT_LT(level(x + 1) - level(x), 0.25 * 32) << "no edge at " << x;
  ground.learn(cv::Mat(120, 160, CV_8UC3, cv::Scalar::all(122)), 1s, nothing);
  EXPECT_NEAR(level(79), 102, 0.03) << "a third of the way from 92 to 122";
  ground.learn(cv::Mat(120, 160, CV_8UC3, cv::Scalar::all(132)), 1500ms, nothing);
  EXPECT_NEAR(level(79), 112, 0.04) << "a third again";
}

}  // namespace
}  // namespace lm::host::detector
