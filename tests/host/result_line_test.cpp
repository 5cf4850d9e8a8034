#include "host/outputs/result_line.h"

#include <gtest/gtest.h>

namespace {

using namespace lm::host::outputs;
using namespace std::chrono_literals;

TEST(ResultLine, HasTheFrameItsTimeAndItsBoxes) {
  EXPECT_EQ(
      result_line(7, 280ms, {{{0.1, 0.25, 1.0 / 3, 0.5}, {"door", "a \"b\""}}, {{0, 0, 1, 1}}}, 281),
      R"({"frame":7,"time":0.280,"boxes":[)"
      R"({"x":0.100000,"y":0.250000,"width":0.333333,"height":0.500000,"regions":["door","a \"b\""]},)"
      R"({"x":0.000000,"y":0.000000,"width":1.000000,"height":1.000000,"regions":[]}],"timestamp":"281"})");
}

TEST(ResultLine, RoundsTheTimeToThousandths) {
  EXPECT_TRUE(result_line(1, 33'367us, {}, 0).starts_with("{\"frame\":1,\"time\":0.033,"));
  EXPECT_TRUE(result_line(1, 3'599'999'600us, {}, 0).starts_with("{\"frame\":1,\"time\":3600.000,"));
}

TEST(NoteLine, SaysWhatHappenedOnOneLine) {
  EXPECT_EQ(note_line("a \"gap\"\nof 9 s", 3, 12s),
            R"({"frame":3,"time":12.000,"note":"a \"gap\"\nof 9 s"})");
}

}  // namespace
