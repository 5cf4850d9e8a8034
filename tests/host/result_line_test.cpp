#include "host/result_line.h"

#include <gtest/gtest.h>

namespace {

using namespace lm::host;
using namespace std::chrono_literals;

TEST(ResultLine, PutsFrameAndTimeInFrontAndKeepsEveryNumbersText) {
  EXPECT_EQ(result_line("{\"object\":[{\"x\":0.10000000000000000001,\"y\":2.50e-1}],\"timestamp\":\"41\"}\n",
                        7, 280ms),
            "{\"frame\":7,\"time\":0.280,\"object\":[{\"x\":0.10000000000000000001,\"y\":2.50e-1}],"
            "\"timestamp\":\"41\"}");
}

TEST(ResultLine, IsOneLineEvenForADocumentOfSeveral) {
  EXPECT_EQ(result_line("{\n \"a\": 1\r\n}\n", 0, 0ms), "{\"frame\":0,\"time\":0.000, \"a\": 1}");
}

TEST(ResultLine, NeedsNoCommaBeforeNothing) {
  EXPECT_EQ(result_line("{}", 1, 40ms), "{\"frame\":1,\"time\":0.040}");
}

TEST(ResultLine, RoundsTheTimeToThousandths) {
  EXPECT_EQ(result_line("{}", 1, 33'367us), "{\"frame\":1,\"time\":0.033}");
  EXPECT_EQ(result_line("{}", 1, 3'599'999'600us), "{\"frame\":1,\"time\":3600.000}");
}

TEST(Boxes, AreReadInTheirOrder) {
  const auto boxes = boxes_of(
      R"({"object":[{"x":0.5,"y":0.25,"width":0.125,"height":1},{"x":0,"y":0,"width":1,"height":1}]})");
  ASSERT_EQ(boxes.size(), 2U);
  EXPECT_EQ(boxes[0], cv::Rect2d(0.5, 0.25, 0.125, 1));
  EXPECT_EQ(boxes[1], cv::Rect2d(0, 0, 1, 1));
}

TEST(Boxes, AreNoneInATextThatHoldsNone) {
  for (const char* text :
       {"", "{}", R"({"object":null,"timestamp":"1"})", R"({"object":[]})", "[1]", "not JSON"}) {
    EXPECT_TRUE(boxes_of(text).empty()) << text;
  }
}

// Found by fuzzing: each of these let an exception of the JSON library out.
TEST(Boxes, OfAnotherKindAreLeftOut) {
  const auto boxes = boxes_of(
      R"({"object":[1,"x",[],{"x":"a"},{"x":1,"y":1,"width":1},{"x":1,"y":2,"width":3,"height":4}]})");
  ASSERT_EQ(boxes.size(), 1U);
  EXPECT_EQ(boxes[0], cv::Rect2d(1, 2, 3, 4));
  EXPECT_TRUE(boxes_of(std::string(2000, '[')).empty()) << "nested too deeply to be read";
}

}  // namespace
