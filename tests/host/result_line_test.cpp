#include "host/outputs/result_line.h"

#include <gtest/gtest.h>

namespace {

using namespace lm::host::outputs;
using namespace std::chrono_literals;

TEST(ResultLine, HasTheFrameItsTimeAndItsBoxes) {
  EXPECT_EQ(
      result_line(7, 280ms, {{{0.1, 0.25, 1.0 / 3, 0.5}, {"door", "a \"b\""}}, {{0, 0, 1, 1}}}, "281"),
      R"({"frame":7,"time":0.280,"boxes":[)"
      R"({"x":0.100000,"y":0.250000,"width":0.333333,"height":0.500000,"regions":["door","a \"b\""]},)"
      R"({"x":0.000000,"y":0.000000,"width":1.000000,"height":1.000000,"regions":[]}],"timestamp":"281"})");
}

TEST(ResultLine, RoundsTheTimeToThousandths) {
  EXPECT_TRUE(result_line(1, 33'367us, {}, "").starts_with("{\"frame\":1,\"time\":0.033,"));
  EXPECT_TRUE(result_line(1, 3'599'999'600us, {}, "").starts_with("{\"frame\":1,\"time\":3600.000,"));
}

TEST(NoteLine, SaysWhatHappenedOnOneLine) {
  EXPECT_EQ(note_line("a \"gap\"\nof 9 s", 3, 12s),
            R"({"frame":3,"time":12.000,"note":"a \"gap\"\nof 9 s"})");
}

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

}  // namespace
