#include "host/events/objects/movement.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

using namespace lm::host::events::objects;
using namespace std::chrono_literals;

// A second apart, in a frame twice as wide as high.
Movement of(const std::vector<cv::Rect2d>& boxes) {
  std::deque<Look> looks;
  std::chrono::microseconds time = 10s;
  for (const cv::Rect2d& box : boxes) looks.push_back({time += 1s, box, 1});
  return movement(looks, 2);
}

TEST(Movement, IsInSizesOfTheObject) {
  const Movement found = of({{0.5, 0.4, 0.1, 0.4}, {0.56, 0.48, 0.1, 0.4}, {0.62, 0.56, 0.1, 0.4}});
  EXPECT_NEAR(found.distance, 1, 1e-9) << "0.12 and 0.16 of a size of 0.2: 0.6 and 0.8";
  EXPECT_NEAR(found.deviation, 0, 1e-6);
  EXPECT_NEAR(found.unevenness, 0, 1e-6);
}

TEST(Movement, DeviatesWhenItIsNotUniform) {
  // The line through 0, 0.2, 0.1 is 0.05, 0.1, 0.15: off by -0.05, 0.1, -0.05.
  const Movement found = of({{0.5, 0.4, 0.1, 0.1}, {0.7, 0.4, 0.1, 0.1}, {0.6, 0.4, 0.1, 0.1}});
  EXPECT_NEAR(found.distance, 1, 1e-9);
  EXPECT_NEAR(found.deviation, std::sqrt(0.005) / 0.1, 1e-9);
}

TEST(Movement, IsUnevenWhenTheSizeIs) {
  // Sizes of 0.1, 0.2, 0.1: off their mean of 0.4 / 3 by -0.1 / 3, 0.2 / 3, -0.1 / 3.
  const Movement found = of({{0.5, 0.4, 0.1, 0.1}, {0.5, 0.4, 0.2, 0.2}, {0.5, 0.4, 0.1, 0.1}});
  EXPECT_NEAR(found.unevenness, std::sqrt(0.06 / 9 / 3) / (0.4 / 3), 1e-9);
}

TEST(Movement, GrowthIsNone) {
  EXPECT_EQ(of({{0.5, 0.4, 0.1, 0.1}, {0.5, 0.4, 0.2, 0.1}, {0.5, 0.4, 0.3, 0.1}}).distance, 0);
  EXPECT_EQ(of({{0.5, 0.4, 0.1, 0.1}, {0.4, 0.4, 0.3, 0.1}, {0.3, 0.4, 0.5, 0.1}}).distance, 0)
      << "on both sides";
}

TEST(Movement, IsThatOfTheSlowerEdge) {
  // Left by 0.1, right by 0.3; the mean size is 0.2.
  const Movement found = of({{0.5, 0.4, 0.1, 0.2}, {0.55, 0.4, 0.2, 0.2}, {0.6, 0.4, 0.3, 0.2}});
  const double size = (std::sqrt(0.02) + 0.2 + std::sqrt(0.06)) / 3;
  EXPECT_NEAR(found.distance, 0.1 / size, 1e-9);
}

TEST(Movement, WhatEntersTheFrameMovesWithItsInnerEdge) {
  const double size = (std::sqrt(0.01) + std::sqrt(0.02) + std::sqrt(0.03)) / 3;
  EXPECT_NEAR(of({{0, 0.4, 0.1, 0.1}, {0, 0.4, 0.2, 0.1}, {0, 0.4, 0.3, 0.1}}).distance, 0.2 / size, 1e-9);
  EXPECT_NEAR(of({{1.9, 0.4, 0.1, 0.1}, {1.8, 0.4, 0.2, 0.1}, {1.7, 0.4, 0.3, 0.1}}).distance, 0.2 / size,
              1e-9);
  EXPECT_NEAR(of({{0.5, 0, 0.1, 0.1}, {0.5, 0, 0.1, 0.2}, {0.5, 0, 0.1, 0.3}}).distance, 0.2 / size, 1e-9);
  EXPECT_NEAR(of({{0.5, 0.9, 0.1, 0.1}, {0.5, 0.8, 0.1, 0.2}, {0.5, 0.7, 0.1, 0.3}}).distance, 0.2 / size,
              1e-9);
}

TEST(Movement, WhatReachesAcrossTheFrameDoesNotMove) {
  EXPECT_EQ(of({{0, 0.4, 1.992, 0.1}, {0, 0.4, 1.996, 0.1}, {0, 0.4, 2, 0.1}}).distance, 0);
}

TEST(Movement, NeedsTwoLooks) {
  EXPECT_EQ(of({{0.5, 0.4, 0.1, 0.1}}).distance, 0);
  EXPECT_NEAR(of({{0.5, 0.4, 0.1, 0.1}, {0.6, 0.4, 0.1, 0.1}}).distance, 1, 1e-9);
}

}  // namespace
