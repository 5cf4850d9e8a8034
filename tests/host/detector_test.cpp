// Detectors by handle as the program uses them.
#include "host/detector/detector.h"

#include <gtest/gtest.h>

#include "host/base/failure.h"

namespace {

using namespace lm::host::base;
using namespace lm::host::detector;

const cv::Size kFrame(160, 120);

// A frame with this shape in white.
cv::Mat frame_with(const std::vector<cv::Rect>& parts) {
  cv::Mat frame(kFrame, CV_8UC3, cv::Scalar::all(60));
  for (const cv::Rect& part : parts) frame(part) = cv::Scalar::all(220);
  return frame;
}

// The boxes of the frame after three empty ones.
Boxes boxes_in(Detector& detector, const cv::Mat& frame) {
  for (int i = 0; i < 3; ++i) detector.process(frame_with({}), 1 + 40 * i);
  return detector.process(frame, 121);
}

// An L whose box covers all of the lower right, where none of it is: down the left side, then along the top.
const std::vector<cv::Rect> kAngle{{20, 20, 30, 80}, {20, 20, 100, 30}};

TEST(ByHandle, NamesTheRegionsWithForegroundNotThoseUnderTheBoxAlone) {
  const std::string document = R"({"roi": [
      {"name": "hollow", "points": [{"x": 0.5, "y": 0.6}, {"x": 0.7, "y": 0.6}, {"x": 0.7, "y": 0.8}, {"x": 0.5, "y": 0.8}]},
      {"name": "all", "points": [{"x": -1, "y": 0}, {"x": 1, "y": 0}, {"x": 1, "y": 1}, {"x": -1, "y": 1}]},
      {"name": "all", "points": [{"x": 0, "y": 0}, {"x": 1, "y": 0}, {"x": 1, "y": 1}, {"x": 0, "y": 1}]}]})";
  const auto detector = make_detector("", {"", document}, kFrame);
  const Boxes boxes = boxes_in(*detector, frame_with(kAngle));
  ASSERT_EQ(boxes.size(), 1U);
  EXPECT_TRUE(boxes[0].area.contains(cv::Point2d(0.6, 0.7)));
  EXPECT_EQ(boxes[0].regions, std::vector<std::string>{"all"}) << "each name once";
}

TEST(ByHandle, BoxesThatReachTheBorderEndThere) {
  const auto detector = make_detector("", {"", "{}"}, kFrame);
  const Boxes boxes = boxes_in(*detector, frame_with({{100, 80, 60, 40}}));
  ASSERT_EQ(boxes.size(), 1U);
  EXPECT_EQ(boxes[0].area.x + boxes[0].area.width, 1);
  EXPECT_EQ(boxes[0].area.y + boxes[0].area.height, 1);
  EXPECT_EQ(boxes[0].regions, std::vector<std::string>{"frame"});
}

TEST(ByHandle, SeveralShareNothing) {
  const auto first = make_detector("", {"", "{}"}, kFrame);
  const auto second = make_detector("", {"", "{}"}, kFrame);
  const cv::Mat moved = frame_with({{40, 40, 40, 40}});
  EXPECT_EQ(boxes_in(*first, moved).size(), 1U);
  EXPECT_TRUE(second->process(moved, 1).empty()) << "its first frame";
}

TEST(ByHandle, LearnsAnewAfterARestart) {
  const auto detector = make_detector("", {"", "{}"}, kFrame);
  const cv::Mat moved = frame_with({{40, 40, 40, 40}});
  const Boxes boxes = boxes_in(*detector, moved);
  detector->restart();
  EXPECT_TRUE(detector->process(moved, 161).empty());
  detector->restart();
  const Boxes again = boxes_in(*detector, moved);
  ASSERT_EQ(again.size(), boxes.size());
  EXPECT_EQ(again[0].area, boxes[0].area);
}

TEST(ByHandle, ReadsRowsWithPadding) {
  const auto detector = make_detector("", {"", "{}"}, kFrame);
  cv::Mat wide(kFrame.height, kFrame.width + 7, CV_8UC3, cv::Scalar::all(255));
  const cv::Mat part = wide(cv::Rect({0, 0}, kFrame));
  frame_with({}).copyTo(part);
  for (int i = 0; i < 3; ++i) EXPECT_TRUE(detector->process(part, 1 + 40 * i).empty());
  frame_with({{40, 40, 40, 40}}).copyTo(part);
  const Boxes boxes = detector->process(part, 121);
  ASSERT_EQ(boxes.size(), 1U);
  const auto packed = make_detector("", {"", "{}"}, kFrame);
  EXPECT_EQ(boxes[0].area, boxes_in(*packed, frame_with({{40, 40, 40, 40}})).at(0).area);
}

TEST(ByHandle, RefusalsBeginWithTheNameOfTheConfiguration) {
  try {
    make_detector("", {"hall.json", R"({"peel": 7})"}, kFrame);
    FAIL() << "nothing was thrown";
  } catch (const Failure& failure) {
    EXPECT_EQ(failure.status(), kRefused);
    EXPECT_STREQ(failure.what(), "hall.json: \"peel\": 7 is out of range (0 to 3)");
  }
}

}  // namespace
