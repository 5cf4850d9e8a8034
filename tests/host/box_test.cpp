#include "host/detector/box.h"

#include <gtest/gtest.h>

#include "host/detector/plugin_detector.h"

namespace {

using namespace lm::host::detector;

TEST(Boxes, AreReadInTheirOrder) {
  const auto boxes = boxes_of(
      R"({"object":[{"x":0.5,"y":0.25,"width":0.125,"height":0.5},{"x":0,"y":0,"width":1,"height":1}]})");
  ASSERT_EQ(boxes.size(), 2U);
  EXPECT_EQ(boxes[0].area, cv::Rect2d(0.5, 0.25, 0.125, 0.5));
  EXPECT_EQ(boxes[1].area, cv::Rect2d(0, 0, 1, 1));
}

TEST(Boxes, AreClippedToTheFrame) {
  const auto boxes = boxes_of(
      R"({"object":[{"x":0.75,"y":0.5,"width":1,"height":1},{"x":-0.25,"y":-0.5,"width":0.5,"height":0.75}]})");
  ASSERT_EQ(boxes.size(), 2U);
  EXPECT_EQ(boxes[0].area, cv::Rect2d(0.75, 0.5, 0.25, 0.5));
  EXPECT_EQ(boxes[1].area, cv::Rect2d(0, 0, 0.25, 0.25));
}

TEST(Boxes, OutsideTheFrameAreLeftOut) {
  EXPECT_TRUE(boxes_of(R"({"object":[{"x":1,"y":0.5,"width":0.5,"height":0.5}]})").empty());
  EXPECT_TRUE(boxes_of(R"({"object":[{"x":0.5,"y":0.5,"width":0,"height":0.5}]})").empty());
}

TEST(Boxes, AreNoneInATextWithoutBoxes) {
  for (const char* text :
       {"", "{}", R"({"object":null,"timestamp":"1"})", R"({"object":[]})", "[1]", "not JSON"}) {
    EXPECT_TRUE(boxes_of(text).empty()) << text;
  }
}

// Found by fuzzing: each of these caused an exception of the JSON library.
TEST(Boxes, OfAnotherKindAreLeftOut) {
  const auto boxes = boxes_of(
      R"({"object":[1,"x",[],{"x":"a"},{"x":1,"y":1,"width":1},{"x":0,"y":0.25,"width":0.5,"height":0.25}]})");
  ASSERT_EQ(boxes.size(), 1U);
  EXPECT_EQ(boxes[0].area, cv::Rect2d(0, 0.25, 0.5, 0.25));
  EXPECT_TRUE(boxes_of(std::string(2000, '[')).empty()) << "nested too deeply to be read";
}

// 0.9 and 0.1 in 32 bits add up to slightly more than 1, 0.7 and 0.3 to slightly less.
TEST(Boxes, ThatReachTheBorderButForRoundingEndThere) {
  for (const float from : {0.9F, 0.7F}) {
    const float length = 1 - from;
    const cv::Rect2d area = clipped({from, from, length, length});
    EXPECT_EQ(area, cv::Rect2d(from, from, 1 - double{from}, 1 - double{from}));
  }
  EXPECT_EQ(clipped({0.5, 0.5, 0.25, 0.4999}), cv::Rect2d(0.5, 0.5, 0.25, 0.4999));
}

}  // namespace
