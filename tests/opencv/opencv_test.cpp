// The adapter for OpenCV gives what a detector gives, for any matrix that holds the pixels.
#include "lightmotion/opencv.hpp"

#include <gmock/gmock.h>

#include <opencv2/core.hpp>
#include <vector>

namespace lm::test {
namespace {

using lightmotion::BackgroundSubtractor;
using testing::HasSubstr;
using testing::Property;

constexpr int width = 160;
constexpr int height = 120;

// A square that passes over a plain background; not in the first frame.
cv::Mat frame(int number, int type) {
  cv::Mat picture(height, width, type, cv::Scalar(60, 70, 80, 90));
  if (number > 0) picture({2 * number, 48, 24, 24}).setTo(cv::Scalar(200, 190, 180, 170));
  return picture;
}

lightmotion::Detector plain(int type) {
  const auto format = type == CV_8UC1   ? LIGHTMOTION_FORMAT_GREY
                      : type == CV_8UC3 ? LIGHTMOTION_FORMAT_BGR
                                        : LIGHTMOTION_FORMAT_BGRX;
  return {"{}", width, height, format};
}

std::vector<cv::Rect> rects(const lightmotion::Boxes& boxes) {
  std::vector<cv::Rect> found;
  for (const lightmotion_box& box : boxes) found.emplace_back(box.x, box.y, box.width, box.height);
  return found;
}

bool are_equal(const cv::Mat& picture, const std::vector<std::uint8_t>& bytes) {
  const cv::Mat other(picture.rows, picture.cols, picture.type(), const_cast<std::uint8_t*>(bytes.data()));
  return cv::norm(picture, other, cv::NORM_INF) == 0;
}

class EveryType : public testing::TestWithParam<int> {};
INSTANTIATE_TEST_SUITE_P(OpenCv, EveryType, testing::Values(CV_8UC1, CV_8UC3, CV_8UC4));

TEST_P(EveryType, GivesTheBoxesMasksAndBackgroundOfADetector) {
  lightmotion::Detector expected = plain(GetParam());
  BackgroundSubtractor detector("{}", 50);
  std::size_t boxes = 0;
  for (int number = 0; number < 30; ++number) {
    const cv::Mat picture = frame(number, GetParam());
    const std::vector<cv::Rect> found = rects(expected.process(picture.data, 0, 20 * number));
    cv::Mat mask;
    detector.apply(picture, mask);
    EXPECT_EQ(detector.boxes(), found) << number;
    ASSERT_EQ(mask.type(), CV_8UC1);
    EXPECT_TRUE(are_equal(mask, expected.foreground())) << number;
    boxes += found.size();
  }
  EXPECT_EQ(boxes, 29U);
  cv::Mat background;
  detector.getBackgroundImage(background);
  EXPECT_EQ(background.type(), GetParam());
  EXPECT_TRUE(are_equal(background, expected.background()));
}

TEST(OpenCv, TakesAPartOfALargerMatrixAndWritesIntoOne) {
  BackgroundSubtractor whole;
  BackgroundSubtractor part;
  for (int number = 0; number < 10; ++number) {
    const cv::Mat picture = frame(number, CV_8UC3);
    cv::Mat larger(height + 20, width + 30, CV_8UC3, cv::Scalar::all(number * 20));
    cv::Mat inside = larger({10, 10, width, height});
    picture.copyTo(inside);
    cv::Mat expected;
    whole.apply(picture, expected);
    cv::Mat mask(height + 20, width + 30, CV_8UC1, cv::Scalar(7));
    cv::Mat mask_inside = mask({10, 10, width, height});
    part.apply(inside, mask_inside);
    EXPECT_EQ(part.boxes(), whole.boxes());
    EXPECT_EQ(cv::norm(mask({10, 10, width, height}), expected, cv::NORM_INF), 0);
    EXPECT_EQ(cv::countNonZero(mask == 7), (height + 20) * (width + 30) - height * width);
  }
}

TEST(OpenCv, CanTakeThePlaceOfOpenCvsSubtractors) {
  const cv::Ptr<cv::BackgroundSubtractor> detector = cv::makePtr<BackgroundSubtractor>("{\"peel\": 0}");
  EXPECT_TRUE(detector->empty());
  cv::Mat mask;
  detector->getBackgroundImage(mask);
  EXPECT_TRUE(mask.empty());
  detector->apply(frame(0, CV_8UC3), mask);
  EXPECT_EQ(cv::countNonZero(mask), 0);
  detector->apply(frame(1, CV_8UC3), mask, 0.01);
  EXPECT_EQ(cv::countNonZero(mask), 24 * 24);
  EXPECT_FALSE(detector->empty());
}

TEST(OpenCv, BeginsAnewWithAnotherSizeAnotherTypeAndWhenCleared) {
  BackgroundSubtractor detector;
  const auto moves = [&](const cv::Mat& picture) {
    detector.apply(picture, cv::noArray());
    return !detector.boxes().empty();
  };
  EXPECT_FALSE(moves(frame(0, CV_8UC3)));
  EXPECT_TRUE(moves(frame(1, CV_8UC3)));
  EXPECT_FALSE(moves(frame(2, CV_8UC1)));
  EXPECT_TRUE(moves(frame(20, CV_8UC1)));
  EXPECT_FALSE(moves(frame(3, CV_8UC1).colRange(0, 100)));
  EXPECT_EQ(detector.detector()->info().width, 100);
  EXPECT_TRUE(moves(frame(20, CV_8UC1).colRange(0, 100)));
  detector.clear();
  EXPECT_EQ(detector.detector(), nullptr);
  EXPECT_FALSE(moves(frame(4, CV_8UC1).colRange(0, 100)));
}

TEST(OpenCv, CountsTimeByTheRateOrTakesIt) {
  BackgroundSubtractor counted("{}", 12.5);
  BackgroundSubtractor timed;
  for (int number = 0; number < 3; ++number) {
    counted.apply(frame(number, CV_8UC1), cv::noArray());
    timed.apply_at(1000 + number * 40, frame(number, CV_8UC1));
  }
  EXPECT_DOUBLE_EQ(counted.detector()->info().frame_rate, 12.5);
  EXPECT_DOUBLE_EQ(timed.detector()->info().frame_rate, 25);
}

TEST(OpenCv, RefusesWhatItCannotUse) {
  EXPECT_THROW(BackgroundSubtractor("{}", 0), cv::Exception);
  BackgroundSubtractor detector;
  detector.apply(frame(0, CV_8UC3), cv::noArray());
  const auto apply = [&](const cv::Mat& picture) { return [&] { detector.apply(picture, cv::noArray()); }; };
  const cv::Mat deep(height, width, CV_16UC1, cv::Scalar(0));
  EXPECT_THAT(apply(deep),
              testing::Throws<cv::Exception>(
                  Property(&cv::Exception::what, HasSubstr("CV_8UC1, CV_8UC3 or CV_8UC4, not CV_16UC1"))));
  EXPECT_THROW(apply(cv::Mat())(), cv::Exception);
  // What was learned is still there.
  detector.apply(frame(1, CV_8UC3), cv::noArray());
  EXPECT_EQ(detector.boxes().size(), 1U);

  BackgroundSubtractor refused(R"({"peel": 4})");
  EXPECT_THROW(refused.apply(frame(0, CV_8UC1), cv::noArray()), lightmotion::Error);
  EXPECT_TRUE(refused.empty());
}

}  // namespace
}  // namespace lm::test
