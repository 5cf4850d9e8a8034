// Peeling by clutter.
#include "host/detector/clutter.h"

#include <gtest/gtest.h>

namespace lm::host::detector {
namespace {

using namespace std::chrono_literals;
using Rects = std::vector<cv::Rect>;

// Feeds the rule with boxes at 25 frames per second.
class Watched {
 public:
  void see(const Rects& boxes) { rule_.update(boxes, 40ms * frames_++); }
  void nothing(double seconds) {
    for (int k = 0; k < 25 * seconds; ++k) see({});
  }
  int peel() const { return rule_.peel(); }
  ClutterRule& rule() { return rule_; }

 private:
  ClutterRule rule_;
  int frames_ = 0;
};

// A drop in every third frame, each somewhere else.
void rain(Watched& watched, double seconds) {
  for (int k = 0; k < 25 * seconds; ++k) {
    watched.see(k % 3 == 0 ? Rects{{(k * 97) % 600, (k * 53) % 400, 4, 20}} : Rects{});
  }
}

TEST(Clutter, PeelsLessStepByStepWhereThereIsNone) {
  Watched watched;
  EXPECT_EQ(watched.peel(), 3);
  watched.nothing(1.9);
  EXPECT_EQ(watched.peel(), 3);
  watched.nothing(0.8);
  EXPECT_EQ(watched.peel(), 2);
  watched.nothing(2.1);
  EXPECT_EQ(watched.peel(), 1);
  watched.nothing(60);
  EXPECT_EQ(watched.peel(), 1);
}

TEST(Clutter, PeelsMoreWithinOneAndAHalfSecondsOfRain) {
  Watched watched;
  watched.nothing(5);
  ASSERT_EQ(watched.peel(), 1);
  rain(watched, 0.7);
  EXPECT_EQ(watched.peel(), 2);
  rain(watched, 0.7);
  EXPECT_EQ(watched.peel(), 3);
  rain(watched, 30);
  EXPECT_EQ(watched.peel(), 3);
}

TEST(Clutter, IsTriedAgainAfterATimeThatDoubles) {
  Watched watched;
  watched.nothing(5);
  rain(watched, 0.5);  // up to 2: patience of 30 s
  ASSERT_EQ(watched.peel(), 2);
  watched.nothing(28);
  EXPECT_EQ(watched.peel(), 2);
  watched.nothing(5);
  ASSERT_EQ(watched.peel(), 1);
  rain(watched, 0.5);  // 60 s
  ASSERT_EQ(watched.peel(), 2);
  watched.nothing(58);
  EXPECT_EQ(watched.peel(), 2);
  watched.nothing(5);
  EXPECT_EQ(watched.peel(), 1);
}

// Who walks is near the place where they were, and may be missed in every third frame.
TEST(Clutter, IsNotWhatMovesOn) {
  Watched watched;
  watched.nothing(5);
  for (int k = 0; k < 250; ++k) {
    watched.see(k % 3 == 2 ? Rects{} : Rects{{20 + 2 * k, 100, 12, 30}, {500 - k, 200, 30, 70}});
  }
  EXPECT_EQ(watched.peel(), 1);
}

TEST(Clutter, IsNotJudgedAcrossAnInterruption) {
  Watched watched;
  watched.nothing(5);
  for (int k = 0; k < 100; ++k) {
    watched.see(k % 6 == 3 ? Rects{{(k * 97) % 600, (k * 53) % 400, 4, 20}} : Rects{});
    if (k % 6 == 5) watched.rule().interrupt();
  }
  EXPECT_EQ(watched.peel(), 1);
}

}  // namespace
}  // namespace lm::host::detector
