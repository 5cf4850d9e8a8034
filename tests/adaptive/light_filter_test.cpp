// What is left of boxes without light, from frame to frame.
#include "host/detector/light_filter.h"

#include <gtest/gtest.h>

#include "tests/adaptive/scene.h"

namespace lm::host::detector {
namespace {

using namespace std::chrono_literals;

const cv::Size kSize(320, 240);
const cv::Rect kBox(100, 60, 80, 100);
const cv::Rect kLeft(100, 60, 40, 100);  // half of it
const cv::Rect kRight(140, 60, 40, 100);

class LightInBoxes : public testing::Test {
 protected:
  void SetUp() override {
    for (int i = 0; i <= 6; ++i) look(ground_, {});
  }

  // The frame after the last one, with boxes that are foreground all over.
  LightFilter::Result look(const cv::Mat& scene, const std::vector<cv::Rect>& boxes,
                           std::chrono::microseconds later = 500ms) {
    time_ += later;
    return filter_.look(camera_.picture(scene), time_, boxes, 1, [&](const cv::Rect& area) {
      ++examined_;
      cv::Mat foreground = cv::Mat::zeros(kSize, CV_8U);
      for (const cv::Rect& box : boxes) foreground(box) = 255;
      return foreground(area).clone();
    });
  }

  cv::Mat with_shadow(const cv::Rect& place, cv::Mat scene) const {
    scene(place) *= 0.7;
    return scene;
  }
  cv::Mat with_object(const cv::Rect& place, cv::Mat scene) const {
    cv::Mat(test::ground(kSize, 6)(place) * 0.4).copyTo(scene(place));
    return scene;
  }
  cv::Mat shadow_beside_object() const { return with_object(kLeft, with_shadow(kRight, ground_.clone())); }

  cv::Mat ground_ = test::ground(kSize, 5);
  test::Camera camera_{0.5, 7};
  LightFilter filter_;
  std::chrono::microseconds time_{0};
  int examined_ = 0;
};

TEST_F(LightInBoxes, AloneLeavesNothing) {
  const LightFilter::Result found = look(with_shadow(kBox, ground_.clone()), {kBox});
  ASSERT_EQ(found.boxes.size(), 1U);
  EXPECT_TRUE(found.boxes[0].empty());
}

TEST_F(LightInBoxes, BesideAnObjectLeavesTheObject) {
  const LightFilter::Result found = look(shadow_beside_object(), {kBox});
  ASSERT_EQ(found.boxes[0].size(), 1U);
  const cv::Rect left = found.boxes[0][0];
  EXPECT_EQ(left & kBox, left);
  EXPECT_NEAR(left.x, kLeft.x, 4);
  EXPECT_NEAR(left.br().x, kLeft.br().x, 8);
  EXPECT_NEAR(left.height, kLeft.height, 8);
}

TEST_F(LightInBoxes, IsNotWhatAnObjectTurnsIntoAtOnce) {
  look(shadow_beside_object(), {kBox});
  const cv::Mat light = with_shadow(kBox, ground_.clone());
  EXPECT_EQ(look(light, {kBox}, 40ms).boxes[0], std::vector{kBox});
  look(ground_, {}, 400ms);
  EXPECT_TRUE(look(light, {kBox}, 40ms).boxes[0].empty()) << "the object is forgotten";
}

TEST_F(LightInBoxes, IsSeldomLookedForInObjectsWithoutIt) {
  const cv::Mat object = with_object(kBox, ground_.clone());
  EXPECT_EQ(look(object, {kBox}).boxes[0], std::vector{kBox});
  EXPECT_EQ(examined_, 1);
  for (int i = 0; i < 9; ++i) look(object, {kBox}, 40ms);
  EXPECT_EQ(examined_, 1) << "for 0.4 s";
  look(object, {kBox}, 40ms);
  EXPECT_EQ(examined_, 2);
}

TEST_F(LightInBoxes, IsLookedForInEachFrameWhereItWas) {
  look(shadow_beside_object(), {kBox});
  EXPECT_EQ(examined_, 1);
  const cv::Mat object = with_object(kLeft, ground_.clone());
  for (int i = 1; i <= 7; ++i) look(object, {kLeft}, 40ms);
  EXPECT_EQ(examined_, 8) << "for 0.3 s";
  look(object, {kLeft}, 40ms);
  EXPECT_EQ(examined_, 9);
  look(object, {kLeft}, 40ms);
  EXPECT_EQ(examined_, 9) << "without light since";
}

TEST_F(LightInBoxes, IsLearnedWhereItStays) {
  const cv::Mat shadow = with_shadow(kBox, ground_.clone());
  for (int i = 1; i <= 4; ++i) EXPECT_TRUE(look(shadow, {kBox}, 100ms).parts.empty()) << i;
  look(shadow, {kBox}, 50ms);
  const LightFilter::Result found = look(shadow, {kBox}, 100ms);
  ASSERT_EQ(found.parts.size(), 1U) << "after 0.55 s";
  const GhostPart& part = found.parts[0];
  EXPECT_EQ(part.area & kBox, kBox);
  EXPECT_GE(cv::countNonZero(part.mask(kBox - part.area.tl())), kBox.area());
}

}  // namespace
}  // namespace lm::host::detector
