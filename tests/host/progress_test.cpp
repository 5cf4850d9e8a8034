#include "host/outputs/progress.h"

#include <gtest/gtest.h>

#include "host/base/time_text.h"

namespace {

using namespace lm::host::base;
using namespace lm::host::outputs;
using namespace std::chrono_literals;

const ProgressState kHalf{500, 33s, 66s, 250, 3};
const ProgressState kLive{1234, 49s, std::nullopt, 24.6, 1};

TEST(Progress, NeverReachesTheLastColumn) {
  for (int width = 1; width <= 200; ++width) {
    SCOPED_TRACE(width);
    for (const ProgressState& state : {kHalf, kLive, ProgressState{}, ProgressState{9, 99s, 66s, 1e9, 0}}) {
      const std::string line = render_progress(width, state);
      EXPECT_LT(line.size(), static_cast<std::size_t>(width));
      EXPECT_EQ(line.find_first_of("\r\n\t"), std::string::npos);
    }
  }
}

TEST(Progress, ShowsEverythingWhereThereIsRoom) {
  // 70 usable columns; "50%" takes 3, the text after the bar 9 + 14 + 11 + 10, the blank before the bar 1: 22
  // are left, 20 of them inside the brackets, half of those filled.
  EXPECT_EQ(render_progress(71, kHalf),
            "50% [##########----------]  250 fps  0:33 of 1:06  0:02 left  3 events");
}

TEST(Progress, LeavesOutWhatDoesNotFit) {
  EXPECT_EQ(render_progress(61, kHalf), "50% [#####-----]  250 fps  0:33 of 1:06  0:02 left  3 events");
  EXPECT_EQ(render_progress(60, kHalf), "50%  250 fps  0:33 of 1:06  0:02 left  3 events");
  EXPECT_EQ(render_progress(38, kHalf), "50%  250 fps  0:33 of 1:06  0:02 left");
  EXPECT_EQ(render_progress(37, kHalf), "50%  250 fps  0:33 of 1:06  3 events");
  EXPECT_EQ(render_progress(26, kHalf), "50%  250 fps  0:02 left");
  EXPECT_EQ(render_progress(12, kHalf), "50%");
  EXPECT_EQ(render_progress(3, kHalf), "");
}

TEST(Progress, CountsFramesWhereTheEndIsUnknown) {
  EXPECT_EQ(render_progress(80, kLive), "1234 frames  25 fps  0:49  1 event");
}

TEST(TimeLeft, IsWhatTheRestTakesAtTheSpeedSoFar) {
  EXPECT_EQ(time_left(kHalf), 2s) << "500 frames at 250 a second took 2 s, for half of it";
  EXPECT_EQ(time_left({100, 10s, 40s, 50, 0}), 6s) << "2 s for a quarter";
  EXPECT_EQ(time_left({100, 50s, 40s, 50, 0}), 0s);
}

TEST(TimeLeft, IsNotGuessed) {
  EXPECT_EQ(time_left(kLive), std::nullopt);
  EXPECT_EQ(time_left(ProgressState{}), std::nullopt);
  EXPECT_EQ(time_left({100, 0s, 40s, 50, 0}), std::nullopt);
  EXPECT_EQ(time_left({100, 10s, 40s, 0, 0}), std::nullopt);
  EXPECT_EQ(time_left({100, 10s, 0s, 50, 0}), std::nullopt);
  EXPECT_EQ(time_left({100, 1us, 2400h * 365, 50, 0}), std::nullopt) << "2 s for a microsecond of it";
}

TEST(ProgressLine, IsAnObjectForPrograms) {
  EXPECT_EQ(progress_line(kHalf, false),
            R"({"frames":500,"length":33.000,"duration":66.000,"eta":2.000,"fps":250.0,"event_count":3})");
  EXPECT_EQ(progress_line(kLive, false), R"({"frames":1234,"length":49.000,"fps":24.6,"event_count":1})");
  EXPECT_EQ(progress_line(kHalf, true),
            R"({"frames":500,"length":33.000,"duration":66.000,"fps":250.0,"event_count":3,"done":true})");
}

TEST(Progress, StaysWithinItsEnds) {
  EXPECT_TRUE(render_progress(80, {1, 0s, 66s, 1, 0}).starts_with("0% [-"));
  EXPECT_TRUE(render_progress(80, {1, 99s, 66s, 1, 0}).starts_with("100% [#"));
  EXPECT_EQ(render_progress(200, {1, 99s, 66s, 1, 0}).find('-'), std::string::npos);
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
