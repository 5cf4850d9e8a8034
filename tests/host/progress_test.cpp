#include "host/progress.h"

#include <gtest/gtest.h>

#include "host/time_text.h"

namespace {

using namespace lm::host;
using namespace std::chrono_literals;

const ProgressState kHalf{500, 33s, 66s, 256.4};
const ProgressState kLive{1234, 49s, std::nullopt, 24.6};

class ProgressWidth : public testing::TestWithParam<int> {};

TEST_P(ProgressWidth, NeverReachesTheLastColumn) {
  const int width = GetParam();
  for (const ProgressState& state : {kHalf, kLive, ProgressState{}, ProgressState{9, 99s, 66s, 1e9}}) {
    const std::string line = render_progress(width, state);
    EXPECT_LT(line.size(), static_cast<std::size_t>(std::max(width, 1)));
    EXPECT_EQ(line.find_first_of("\r\n\t"), std::string::npos);
  }
}

INSTANTIATE_TEST_SUITE_P(From1To200, ProgressWidth, testing::Range(1, 201));

TEST(Progress, ShowsEverythingWhereThereIsRoom) {
  // 49 columns to fill; "50%" and "  256 fps  0:33 of 1:06" take 3 + 23, the blank before the bar 1: 22 are
  // left, 20 inside the brackets, half of them done.
  EXPECT_EQ(render_progress(50, kHalf), "50% [##########----------]  256 fps  0:33 of 1:06");
}

TEST(Progress, LeavesOutWhatDoesNotFit) {
  EXPECT_EQ(render_progress(40, kHalf), "50% [#####-----]  256 fps  0:33 of 1:06");
  EXPECT_EQ(render_progress(39, kHalf), "50%  256 fps  0:33 of 1:06");
  EXPECT_EQ(render_progress(26, kHalf), "50% [#####-----]  256 fps");
  EXPECT_EQ(render_progress(25, kHalf), "50%  256 fps");
  EXPECT_EQ(render_progress(12, kHalf), "50%");
  EXPECT_EQ(render_progress(3, kHalf), "");
}

TEST(Progress, CountsFramesWhereTheEndIsUnknown) {
  EXPECT_EQ(render_progress(80, kLive), "1234 frames  25 fps  0:49");
}

TEST(Progress, StaysWithinItsEnds) {
  EXPECT_TRUE(render_progress(80, {1, 0s, 66s, 1}).starts_with("0% [-"));
  EXPECT_TRUE(render_progress(80, {1, 99s, 66s, 1}).starts_with("100% [#"));
  EXPECT_EQ(render_progress(200, {1, 99s, 66s, 1}).find('-'), std::string::npos);
}

TEST(TimeText, ShowsHoursOnlyWhenThereAreSome) {
  EXPECT_EQ(clock_text(0s), "0:00");
  EXPECT_EQ(clock_text(59'999ms), "0:59");
  EXPECT_EQ(clock_text(59min + 59s), "59:59");
  EXPECT_EQ(clock_text(1h + 2min + 3s), "1:02:03");
}

TEST(TimeText, RoundsSecondsToThousandths) {
  EXPECT_EQ(seconds_text(0us), "0.000");
  EXPECT_EQ(seconds_text(7'040us), "0.007");
  EXPECT_EQ(seconds_text(59'999'500us), "60.000");
}

}  // namespace
