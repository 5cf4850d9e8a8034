// Operations on masks, compared with OpenCV's.
#include "host/detector/masks.h"

#include <gtest/gtest.h>

#include <map>
#include <opencv2/imgproc.hpp>

namespace lm::host::detector {
namespace {

// Pixels of a seed, more or less of them, in patches that have holes and touch at corners.
cv::Mat mask(cv::Size size, std::uint64_t seed, double share) {
  cv::Mat random(size, CV_32F);
  cv::RNG(seed).fill(random, cv::RNG::UNIFORM, 0, 1);
  return random < share;
}

class Masks : public testing::TestWithParam<double> {};

TEST_P(Masks, HaveTheConnectedPartsOfOpenCv) {
  for (const cv::Size size : {cv::Size(1, 1), cv::Size(1, 9), cv::Size(9, 1), cv::Size(40, 30)}) {
    const cv::Mat set = mask(size, 3, GetParam());
    for (const Touching touching : {Touching::kSides, Touching::kCorners}) {
      cv::Mat labels;
      cv::Mat figures;
      cv::Mat centres;
      const int count = cv::connectedComponentsWithStats(set, labels, figures, centres,
                                                         touching == Touching::kSides ? 4 : 8, CV_32S);
      const ConnectedParts found = connected_parts(set, touching);
      ASSERT_EQ(found.areas.size(), static_cast<std::size_t>(count - 1));
      std::map<int, int> label_of;
      int pixels = 0;
      for (const detector::Run& run : found.runs) {
        const int label = label_of.try_emplace(run.part, labels.at<int>(run.y, run.begin)).first->second;
        for (int x = run.begin; x < run.end; ++x, ++pixels) ASSERT_EQ(labels.at<int>(run.y, x), label);
        ASSERT_EQ(count_in(run, set), run.end - run.begin);
      }
      EXPECT_EQ(pixels, cv::countNonZero(set));
      for (const auto& [part, label] : label_of) {
        const auto i = static_cast<std::size_t>(part);
        EXPECT_EQ(found.areas[i], figures.at<int>(label, cv::CC_STAT_AREA));
        EXPECT_EQ(found.boxes[i], cv::Rect(figures.at<int>(label, 0), figures.at<int>(label, 1),
                                           figures.at<int>(label, 2), figures.at<int>(label, 3)));
      }
    }
  }
}

TEST_P(Masks, AreDilatedAndEroded) {
  for (const cv::Size size : {cv::Size(1, 1), cv::Size(1, 9), cv::Size(9, 1), cv::Size(40, 30)}) {
    const cv::Mat set = mask(size, 4, GetParam());
    cv::Mat wider;
    cv::Mat narrower;
    cv::dilate(set, wider, cv::Mat::ones(3, 3, CV_8U));
    cv::erode(set, narrower, cv::Mat::ones(3, 3, CV_8U));
    EXPECT_EQ(cv::countNonZero(dilated(set) != wider), 0);
    EXPECT_EQ(cv::countNonZero(eroded(set) != narrower), 0);
  }
}

INSTANTIATE_TEST_SUITE_P(Shares, Masks, testing::Values(0.0, 0.05, 0.4, 0.6, 0.95, 1.0));

}  // namespace
}  // namespace lm::host::detector
