#include "host/detector/analysis_size.h"

#include <gtest/gtest.h>

namespace lm::host::detector {
namespace {

TEST(AnalysisSize, DoublesSmallFramesAndHalvesLargeOnes) {
  EXPECT_EQ(analysis_size({320, 240}), cv::Size(640, 480));
  EXPECT_EQ(analysis_size({360, 240}), cv::Size(720, 480));
  EXPECT_EQ(analysis_size({240, 320}), cv::Size(480, 640));
  EXPECT_EQ(analysis_size({400, 300}), cv::Size(800, 600));
  EXPECT_EQ(analysis_size({401, 300}), cv::Size(401, 300));
  EXPECT_EQ(analysis_size({640, 360}), cv::Size(640, 360));
  EXPECT_EQ(analysis_size({1279, 720}), cv::Size(1279, 720));
  EXPECT_EQ(analysis_size({1280, 720}), cv::Size(640, 360));
  EXPECT_EQ(analysis_size({1920, 1080}), cv::Size(960, 540));
  EXPECT_EQ(analysis_size({1080, 1920}), cv::Size(540, 960));
  EXPECT_EQ(analysis_size({2560, 1440}), cv::Size(640, 360));
  EXPECT_EQ(analysis_size({3840, 2160}), cv::Size(960, 540));
  EXPECT_EQ(analysis_size({4000, 1}), cv::Size(1000, 1));
}

// Of 4 x 4 blocks, whose pixels are 0 but for one of 160, the mean is 10.
TEST(Resized, TakesTheMeanOfThePixelsThatAreReplaced) {
  cv::Mat picture = cv::Mat::zeros(16, 24, CV_8UC3);
  for (int y = 1; y < 16; y += 4)
    for (int x = 2; x < 24; x += 4) picture.at<cv::Vec3b>(y, x) = {160, 80, 0};
  const cv::Mat smaller = resized(picture, {6, 4});
  ASSERT_EQ(smaller.size(), cv::Size(6, 4));
  for (int y = 0; y < 4; ++y)
    for (int x = 0; x < 6; ++x) EXPECT_EQ(smaller.at<cv::Vec3b>(y, x), cv::Vec3b(10, 5, 0));
}

TEST(Resized, InterpolatesWhatIsLarger) {
  cv::Mat picture(1, 2, CV_8U);
  picture.at<unsigned char>(0) = 0;
  picture.at<unsigned char>(1) = 100;
  const cv::Mat larger = resized(picture, {4, 1});
  EXPECT_EQ(larger.at<unsigned char>(0), 0);
  EXPECT_EQ(larger.at<unsigned char>(1), 25);
  EXPECT_EQ(larger.at<unsigned char>(2), 75);
  EXPECT_EQ(larger.at<unsigned char>(3), 100);
}

TEST(Resized, LeavesThePictureAloneThatHasTheSize) {
  const cv::Mat picture(4, 6, CV_8UC3, cv::Scalar(1, 2, 3));
  EXPECT_EQ(resized(picture, {6, 4}).data, picture.data);
}

}  // namespace
}  // namespace lm::host::detector
