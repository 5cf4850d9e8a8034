#include "host/events/light.h"

#include <gtest/gtest.h>

namespace {

using namespace lm::host::events;
using namespace std::chrono_literals;
using lm::host::detector::Regions;
using std::chrono::microseconds;
using Flags = std::vector<bool>;

const cv::Size kSize(320, 180);
const cv::Rect2d kAll(0, 0, 1, 1);
const cv::Rect2d kLeft(0, 0, 0.5, 1);
const cv::Rect2d kRight(0.5, 0, 0.5, 1);

// Blocks of 6 pixels with grey values of 60 to 139; a different picture for every seed.
cv::Mat texture(std::uint32_t seed) {
  cv::Mat image(kSize, CV_8UC3);
  for (int y = 0; y < image.rows; ++y) {
    for (int x = 0; x < image.cols; ++x) {
      std::uint32_t value = seed * 7919U + static_cast<std::uint32_t>(y / 6 * 61 + x / 6);
      value = (value ^ (value >> 7)) * 0x9E3779B1U;
      const auto grey = static_cast<std::uint8_t>(60 + (value >> 16) % 80);
      image.at<cv::Vec3b>(y, x) = {grey, grey, grey};
    }
  }
  return image;
}

cv::Mat in_light(const cv::Mat& image, double gain, double offset, const cv::Rect2d& where = kAll) {
  cv::Mat other = image.clone();
  const cv::Rect part(static_cast<int>(where.x * kSize.width), 0, static_cast<int>(where.width * kSize.width),
                      kSize.height);
  cv::Mat area = other(part);
  area.convertTo(area, -1, gain, offset);
  return other;
}

Flags flags(const Observation& seen) {
  Flags flags;
  for (const Box& box : seen.boxes) flags.push_back(box.by_light);
  return flags;
}

class Light : public testing::Test {
 protected:
  // The next picture, 100 ms after the previous one.
  Observation see(const cv::Mat& image, const std::vector<cv::Rect2d>& boxes = {}) {
    Observation seen;
    seen.time = time_;
    for (const cv::Rect2d& box : boxes) seen.boxes.push_back({box});
    time_ += 100ms;
    watch_.look(image, seen);
    return seen;
  }
  Flags by_light(const cv::Mat& image, const std::vector<cv::Rect2d>& boxes) {
    return flags(see(image, boxes));
  }

  LightWatch watch_{Regions{}};
  cv::Mat scene_ = texture(1);
  microseconds time_{0};
};

struct LampCase {
  const char* name;
  double gain, offset;
};

class Lamp : public Light, public testing::WithParamInterface<LampCase> {};

TEST_P(Lamp, MakesBoxesOfTheLight) {
  see(scene_);
  const Observation seen = see(in_light(scene_, GetParam().gain, GetParam().offset), {kAll});
  EXPECT_EQ(flags(seen), Flags{true});
  ASSERT_TRUE(seen.light);
  EXPECT_EQ(seen.light->after > seen.light->before, GetParam().offset > 0 || GetParam().gain > 1);
  EXPECT_DOUBLE_EQ(seen.light->share, 1);
}

INSTANTIATE_TEST_SUITE_P(Is, Lamp,
                         testing::Values(LampCase{"on", 1, 40}, LampCase{"off", 1, -40},
                                         LampCase{"brighter", 1.5, 0}, LampCase{"darker", 0.5, 0}),
                         [](const auto& test) { return test.param.name; });

TEST_F(Light, MeasuresThePicturesBrightness) {
  EXPECT_DOUBLE_EQ(see(cv::Mat(kSize, CV_8UC3, cv::Scalar(90, 90, 90))).brightness, 90);
}

TEST_F(Light, ABrightObjectBeforeTheCameraIsNoLight) {
  see(scene_);
  EXPECT_EQ(by_light(in_light(texture(2), 1, 60), {kAll}), Flags{false}) << "the texture is another";
  EXPECT_EQ(by_light(cv::Mat(kSize, CV_8UC3, cv::Scalar(220, 220, 220)), {kAll}), Flags{false})
      << "there is none";
}

TEST_F(Light, NothingHappensInTheSameLight) {
  see(scene_);
  EXPECT_EQ(by_light(scene_, {kAll}), Flags{false});
  EXPECT_EQ(by_light(in_light(scene_, 1, 2), {kAll}), Flags{false}) << "two grey levels are noise";
}

TEST_F(Light, ChangesByMoreThanThreeGreyLevels) {
  see(scene_);
  EXPECT_EQ(by_light(in_light(scene_, 1, 4), {kAll}), Flags{true});
}

// 10 and 14 of 16 columns are 0.625 and 0.875 of the frame.
TEST_F(Light, WithoutTextureChangesOverFourFifths) {
  const cv::Mat wall(kSize, CV_8UC3, cv::Scalar(90, 90, 90));
  see(wall);
  EXPECT_EQ(by_light(in_light(wall, 1, 40, {0, 0, 0.625, 1}), {kAll}), Flags{false});
  EXPECT_EQ(by_light(in_light(wall, 1, 40, {0, 0, 0.875, 1}), {kAll}), Flags{true});
}

TEST_F(Light, SmallBoxesStayMotion) {
  see(scene_);
  EXPECT_EQ(by_light(in_light(scene_, 1, 40), {{0.1, 0.1, 0.2, 0.2}}), Flags{false});
}

TEST_F(Light, TakesBoxesOverATenthOfTheFrame) {
  const cv::Mat bright = in_light(scene_, 1, 40);
  see(scene_);
  EXPECT_EQ(by_light(bright, {{0, 0, 0.25, 0.36}}), Flags{false}) << "0.09 of the frame";
  EXPECT_EQ(by_light(bright, {{0, 0, 0.25, 0.44}}), Flags{true}) << "0.11";
  EXPECT_EQ(by_light(bright, {{0, 0, 0.25, 0.22}, {0.5, 0, 0.25, 0.22}}), (Flags{true, true})) << "together";
}

TEST_F(Light, BoxesBesideTheLitPartAreMotion) {
  see(scene_);
  EXPECT_EQ(by_light(in_light(scene_, 1, 40, kLeft), {kRight, kLeft}), (Flags{false, true}));
}

// The lighting changes in the left quarter: columns 0 to 3 of 16.
TEST_F(Light, BoxesThatHoldHalfOfTheLitPartAreOfTheLight) {
  see(scene_);
  const cv::Mat lit = in_light(scene_, 1, 40, {0, 0, 0.25, 1});
  EXPECT_EQ(by_light(lit, {{0.125, 0, 0.875, 1}}), Flags{true});
  // 0.1 of the frame, less than half of both 0.25 and 0.85.
  EXPECT_EQ(by_light(lit, {{0.15, 0, 0.85, 1}}), Flags{false});
}

TEST_F(Light, LastsUntilThePluginHasAdapted) {
  see(scene_);
  const cv::Mat bright = in_light(scene_, 1, 40);
  see(bright, {kAll});
  for (int i = 0; i < 20; ++i) EXPECT_EQ(by_light(bright, {kAll}), Flags{true});
  // The last comparison with the old lighting was at 0.6 s; 5 s later it is forgotten.
  time_ += 5s;
  EXPECT_EQ(by_light(bright, {kAll}), Flags{false});
}

// Pictures are compared with one half a second older: the last comparison with the old lighting is at 0.5 s.
TEST_F(Light, LastsFiveSecondsToTheMicrosecond) {
  see(scene_);
  const cv::Mat bright = in_light(scene_, 1, 40);
  for (int i = 1; i <= 6; ++i) see(bright, {kAll});
  time_ = 5'500ms;
  EXPECT_EQ(by_light(bright, {kAll}), Flags{true});
  time_ = 5'500ms + 1us;
  EXPECT_EQ(by_light(bright, {kAll}), Flags{false});
}

TEST_F(Light, MayChangeStepByStep) {
  see(scene_);
  Observation seen;
  for (int step = 1; step <= 10; ++step) seen = see(in_light(scene_, 1, 5.0 * step), {kAll});
  EXPECT_EQ(flags(seen), Flags{true});
  EXPECT_NEAR(seen.light->after - seen.light->before, 50, 0.5)
      << "from before the first step to after the last";
}

TEST_F(Light, IsNotComparedAcrossAnInterruption) {
  see(scene_);
  watch_.forget();
  EXPECT_EQ(by_light(in_light(scene_, 1, 40), {kAll}), Flags{false});
}

TEST_F(Light, CountsWhereThePluginLooks) {
  // Only the right half is watched, and its lighting is constant.
  LightWatch watch(Regions(R"({"roi": [{"points": [{"x": "0.5", "y": "0"}, {"x": "1", "y": "0"},
                                                   {"x": "1", "y": "1"}, {"x": "0.5", "y": "1"}]}]})"));
  Observation seen;
  watch.look(scene_, seen);
  seen.time = 100ms;
  seen.boxes = {{kAll}};
  watch.look(in_light(scene_, 1, 40, kLeft), seen);
  EXPECT_EQ(flags(seen), Flags{false});
}

// ---- boxes that the detector has examined
// -------------------------------------------------------------------

class Examined : public Light {
 protected:
  Observation see_boxes(const cv::Mat& image, const std::vector<std::pair<cv::Rect2d, bool>>& boxes) {
    Observation seen;
    seen.time = time_;
    for (const auto& [area, by_light] : boxes)
      seen.boxes.push_back({.area = area, .by_light = by_light, .examined = true});
    time_ += 100ms;
    watch_.look(image, seen);
    return seen;
  }
};

TEST_F(Examined, StayObjectsWhereTheLightingChanges) {
  see(scene_);
  EXPECT_EQ(flags(see_boxes(in_light(scene_, 1, 40), {{kAll, false}})), Flags{false});
}

// 0.3 x 0.4 of the frame is 12 %, 0.3 x 0.3 is 9 %.
TEST_F(Examined, OfLightAreALightingChangeFromATenthOfTheFrameOn) {
  see(scene_);
  EXPECT_EQ(flags(see_boxes(scene_, {{{0, 0, 0.3, 0.3}, true}})), Flags{}) << "a shadow is nothing";
  const Observation seen = see_boxes(in_light(scene_, 1, 4), {{{0, 0, 0.3, 0.4}, true}, {kAll, false}});
  EXPECT_EQ(flags(seen), (Flags{true, false}));
  ASSERT_TRUE(seen.light);
  EXPECT_GT(seen.light->after, seen.light->before);
}

TEST_F(Examined, OfALightingChangeStayUntilTheyAreGone) {
  see(scene_);
  see_boxes(scene_, {{{0, 0, 0.3, 0.4}, true}});
  EXPECT_EQ(flags(see_boxes(scene_, {{{0, 0, 0.3, 0.3}, true}})), Flags{true});
  for (int i = 0; i < 6; ++i) see_boxes(scene_, {{kAll, false}});
  EXPECT_EQ(flags(see_boxes(scene_, {{{0, 0, 0.3, 0.3}, true}})), Flags{});
}

}  // namespace
