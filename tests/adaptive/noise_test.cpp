// The noise of pictures against the truth.
#include "host/detector/noise.h"

#include <gtest/gtest.h>

#include <opencv2/imgproc.hpp>

#include "tests/adaptive/scene.h"

namespace lm::host::detector {
namespace {

using namespace std::chrono_literals;
using test::Camera;

const cv::Size kFrame(320, 240);

// The noise measured in `seconds` of video at 25 frames per second.
double measured(double sigma, const auto& scene_at, double seconds = 4) {
  Camera camera(sigma, 5);
  NoiseMeter meter;
  for (int k = 0; k < 25 * seconds; ++k) meter.add(camera.picture(scene_at(k)), k * 40ms);
  return meter.sigma().value();
}

class Level : public ::testing::TestWithParam<double> {};
INSTANTIATE_TEST_SUITE_P(Levels, Level, testing::Values(0.5, 1, 1.5, 2, 3, 4.5, 6, 8));

TEST_P(Level, IsMeasuredOverTexture) {
  const cv::Mat scene = test::ground(kFrame, 1);
  EXPECT_NEAR(measured(GetParam(), [&](int) { return scene; }), GetParam(), 0.08 + 0.04 * GetParam());
}

TEST_P(Level, IsMeasuredWhileAThirdOfThePictureMoves) {
  const cv::Mat scene = test::ground(kFrame, 1);
  const cv::Mat moving = test::ground({kFrame.width, kFrame.height / 3}, 2);
  const auto scene_at = [&](int k) {
    cv::Mat now = scene.clone();
    const int shift = 5 * k % kFrame.width;
    cv::Mat left = now(cv::Rect(0, 60, shift, moving.rows));
    if (shift > 0) moving.colRange(kFrame.width - shift, kFrame.width).copyTo(left);
    cv::Mat right = now(cv::Rect(shift, 60, kFrame.width - shift, moving.rows));
    moving.colRange(0, kFrame.width - shift).copyTo(right);
    return now;
  };
  const double found = measured(GetParam(), scene_at);
  EXPECT_GT(found, GetParam() * 0.9);
  EXPECT_LT(found, GetParam() * 1.8 + 0.3);
}

TEST(Noise, IsNotWhatAChangeOfBrightnessDoes) {
  const cv::Mat scene = test::ground(kFrame, 1);
  EXPECT_NEAR(measured(2, [&](int k) { return cv::Mat(scene + cv::Scalar::all(6 * (k % 2))); }), 2, 0.3);
}

TEST(Noise, OfAPictureWithoutAnyIsZero) {
  const cv::Mat scene = test::ground(kFrame, 1);
  EXPECT_EQ(measured(0, [&](int) { return scene; }), 0);
}

// Something moves in a picture of which everything else stands absolutely still.
TEST(Noise, OfAGeneratedPictureIsZeroWhereverSomethingMoves) {
  const cv::Mat scene = test::ground(kFrame, 1);
  const test::Thing walker = test::person(50, 3);
  const auto scene_at = [&](int k) {
    cv::Mat now = scene.clone();
    test::draw(now, walker, {10 + 2 * k, 60}, 60);
    return now;
  };
  EXPECT_EQ(measured(0, scene_at), 0);
}

// An encoder repeats blocks of 16 x 16 that hardly change: a third of them, others in each frame.
TEST(Noise, IsMeasuredBesideBlocksThatAnEncoderRepeats) {
  const cv::Mat scene = test::ground(kFrame, 1);
  Camera camera(3, 5);
  cv::RNG random(7);
  NoiseMeter meter;
  cv::Mat shown = camera.picture(scene);
  for (int k = 0; k < 100; ++k) {
    const cv::Mat fresh = camera.picture(scene);
    for (int y = 0; y < kFrame.height; y += 16) {
      for (int x = 0; x < kFrame.width; x += 16) {
        const cv::Rect block(x, y, 16, 16);
        if (random.uniform(0, 3) > 0) fresh(block).copyTo(shown(block));
      }
    }
    meter.add(shown, k * 40ms);
  }
  EXPECT_NEAR(meter.sigma().value(), 3, 0.3);
}

// Half of the picture is overexposed, where no noise is left.
TEST(Noise, IsMeasuredBesideAreasThatAreClipped) {
  cv::Mat scene = test::ground(kFrame, 1);
  scene.colRange(0, 200) = cv::Scalar::all(300);
  EXPECT_NEAR(measured(3, [&](int) { return scene; }), 3, 0.3);
}

// Dark parts of a picture are noisier: they decide.
TEST(Noise, OfTheNoisiestBrightnessCounts) {
  cv::Mat scene(kFrame, CV_32FC3, cv::Scalar::all(200));
  scene.colRange(0, 80) = cv::Scalar::all(40);
  Camera calm(1, 5);
  Camera noisy(4, 6);
  NoiseMeter meter;
  for (int k = 0; k < 60; ++k) {
    cv::Mat picture = calm.picture(scene);
    noisy.picture(scene).colRange(0, 80).copyTo(picture.colRange(0, 80));
    meter.add(picture, k * 40ms);
  }
  EXPECT_NEAR(meter.sigma().value(), 4, 0.4);
}

TEST(Noise, OfOneChannelIsKnown) {
  const cv::Mat scene(kFrame, CV_8UC3, cv::Scalar(100, 100, 100));
  cv::RNG random(3);
  NoiseMeter meter;
  for (int k = 0; k < 50; ++k) {
    cv::Mat noise(kFrame, CV_32FC3);
    random.fill(noise, cv::RNG::NORMAL, cv::Scalar(0, 0, 0), cv::Scalar(1, 2, 5));
    cv::Mat picture;
    cv::Mat sum = noise + cv::Scalar(100, 100, 100);
    sum.convertTo(picture, CV_8UC3);
    meter.add(picture, k * 40ms);
  }
  EXPECT_NEAR(meter.sigma(0).value(), 1, 0.1);
  EXPECT_NEAR(meter.sigma(1).value(), 2, 0.15);
  EXPECT_NEAR(meter.sigma(2).value(), 5, 0.3);
  EXPECT_EQ(meter.sigma(), meter.sigma(2));
}

TEST(Noise, IsUnknownAtFirstAndForPicturesThatAreTooSmallForNothing) {
  NoiseMeter meter;
  EXPECT_FALSE(meter.sigma());
  for (int k = 0; k < 20; ++k) meter.add(cv::Mat(1, 1, CV_8U, cv::Scalar(9)), k * 40ms);
  EXPECT_EQ(meter.sigma(), 0);
}

TEST(Noise, FollowsAChangeWithinSomeSeconds) {
  const cv::Mat scene = test::ground(kFrame, 1);
  Camera day(1, 5);
  Camera night(6, 5);
  NoiseMeter meter;
  for (int k = 0; k < 250; ++k) meter.add(day.picture(scene), k * 40ms);
  EXPECT_NEAR(meter.sigma().value(), 1, 0.15);
  for (int k = 250; k < 400; ++k) meter.add(night.picture(scene), k * 40ms);
  EXPECT_NEAR(meter.sigma().value(), 6, 1);
}

TEST(Noise, IsNotMeasuredAcrossAnInterruption) {
  const cv::Mat one = test::ground(kFrame, 1);
  const cv::Mat other = test::ground(kFrame, 2);
  Camera camera(1, 5);
  NoiseMeter meter;
  for (int k = 0; k < 60; ++k) {
    meter.add(camera.picture(k / 3 % 2 == 0 ? one : other), k * 40ms);
    if (k % 3 == 2) meter.interrupt();
  }
  EXPECT_NEAR(meter.sigma().value(), 1, 0.15);
}

// ---- the rule ---------------------------------------------------------------------------------------------

TEST(NoiseRule, IsLessSensitiveTheNoisierThePicture) {
  EXPECT_EQ(NoiseRule::sensitivity_for(0), 4);
  EXPECT_EQ(NoiseRule::sensitivity_for(3.5), 4);
  EXPECT_EQ(NoiseRule::sensitivity_for(3.6), 3);
  EXPECT_EQ(NoiseRule::sensitivity_for(5.6), 2);
  EXPECT_EQ(NoiseRule::sensitivity_for(8.1), 1);
  EXPECT_EQ(NoiseRule::sensitivity_for(100), 1);
}

TEST(NoiseRule, FollowsAfterASecondOfMoreNoiseAndFiveOfLess) {
  NoiseRule rule;
  EXPECT_EQ(rule.update(6, 0s), std::nullopt);
  EXPECT_EQ(rule.update(6, 900ms), std::nullopt);
  EXPECT_EQ(rule.update(6, 1s), 2);
  EXPECT_EQ(rule.update(6, 2s), std::nullopt);
  EXPECT_EQ(rule.update(1, 3s), std::nullopt);
  EXPECT_EQ(rule.update(1, 7900ms), std::nullopt);
  EXPECT_EQ(rule.update(1, 8s), 4);
}

// Around a bound: 3.4 and 3.6 by turns, and 3.1, which is more than 0.85 of it.
TEST(NoiseRule, DoesNotGoBackAndForth) {
  NoiseRule rule;
  for (int k = 0; k < 40; ++k) EXPECT_EQ(rule.update(k % 2 == 0 ? 3.6 : 3.4, k * 500ms), std::nullopt);
  EXPECT_EQ(rule.update(3.7, 20s), std::nullopt);
  EXPECT_EQ(rule.update(3.7, 21s), 3);
  for (int k = 0; k < 40; ++k) EXPECT_EQ(rule.update(3.1, 22s + k * 500ms), std::nullopt);
  EXPECT_EQ(rule.update(2.9, 50s), std::nullopt);
  EXPECT_EQ(rule.update(2.9, 55s), 4);
}

}  // namespace
}  // namespace lm::host::detector
