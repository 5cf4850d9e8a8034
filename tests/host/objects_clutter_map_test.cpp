#include "host/events/objects/clutter_map.h"

#include <gtest/gtest.h>

namespace {

using namespace lm::host::events::objects;
using namespace std::chrono_literals;
using Kind = ClutterMap::Kind;

// Two by one: places are 0.125 wide and 0.0833 high, larger ones 0.5 by 0.25.
constexpr double kAspect = 2;
const cv::Rect2d kBox(1, 0.5, 0.1, 0.1);

TEST(ClutterMap, ExpectsNothingAtFirst) {
  const ClutterMap map(kAspect);
  EXPECT_FALSE(map.expects_clutter(kBox));
  EXPECT_FALSE(map.is_weather());
}

TEST(ClutterMap, ExpectsClutterWhereThereWasMoreOfItThanObjects) {
  ClutterMap map(kAspect);
  map.add(Kind::kClutter, kBox, 1);
  EXPECT_TRUE(map.expects_clutter(kBox));
  EXPECT_FALSE(map.expects_clutter({0.2, 0.2, 0.1, 0.1}));
  map.add(Kind::kObject, kBox, 0.7);
  EXPECT_TRUE(map.expects_clutter(kBox)) << "0.3 s more";
  map.add(Kind::kObject, kBox, 0.1);
  EXPECT_FALSE(map.expects_clutter(kBox)) << "0.2 s more";
}

TEST(ClutterMap, ClutterOfHalfTheSizeCountsAndSmallerDoesNot) {
  const auto expects = [](double clutter, double box) {
    ClutterMap map(kAspect);
    for (int i = 0; i < 9; ++i) {  // in each of nine places
      const cv::Point2d centre(0.9375 + 0.125 * (i % 3), (5.5 + i / 3) / 12);
      map.add(Kind::kClutter, {centre.x - clutter / 2, centre.y - clutter / 2, clutter, clutter}, 1);
    }
    return map.expects_clutter({1, 0.5, box, box});
  };
  EXPECT_TRUE(expects(0.0626, 0.126));
  EXPECT_TRUE(expects(0.0626, 0.01)) << "and whatever is smaller";
  EXPECT_FALSE(expects(0.0624, 0.126));
}

TEST(ClutterMap, ABoxMustLieThereForThreeQuarters) {
  ClutterMap map(kAspect);
  map.add(Kind::kClutter, {1.035, 0.51, 0.055, 0.06}, 1);  // with a margin of half its size: one place
  EXPECT_TRUE(map.expects_clutter({1, 0.51, 0.125, 0.06}));
  EXPECT_TRUE(map.expects_clutter({1.02, 0.51, 0.125, 0.06})) << "84 % of it";
  EXPECT_FALSE(map.expects_clutter({1.05, 0.51, 0.125, 0.06})) << "60 %";
}

TEST(ClutterMap, LeavesOutPlacesThatABoxReachesWithItsRimOnly) {
  ClutterMap map(kAspect);
  map.add(Kind::kClutter, {1.07, 0.51, 0.05, 0.06}, 1);  // with its margin up to 1.145
  EXPECT_TRUE(map.expects_clutter({1.01, 0.51, 0.1, 0.06}));
  EXPECT_FALSE(map.expects_clutter({1.13, 0.51, 0.1, 0.06}));
}

TEST(ClutterMap, FadesInTwoMinutes) {
  ClutterMap map(kAspect);
  map.add(Kind::kClutter, kBox, 0.5);
  for (auto time = 0s; time <= 82s; time += 1s) map.pass(time);
  EXPECT_TRUE(map.expects_clutter(kBox));
  map.pass(85s);
  EXPECT_FALSE(map.expects_clutter(kBox)) << "120 s * ln(0.5 / 0.25) = 83.2 s";
}

TEST(ClutterMap, WeatherIsInMoreThanThreeQuartersOfThePicture) {
  ClutterMap map(kAspect);
  const auto area = [](int i) { return cv::Rect2d(0.2 + 0.5 * (i % 4), 0.1 + 0.25 * (i / 4), 0.03, 0.03); };
  for (int i = 0; i < 12; ++i) map.add(Kind::kClutter, area(i), 1);
  EXPECT_FALSE(map.is_weather());
  EXPECT_FALSE(map.expects_clutter({0.4, 0.9, 0.03, 0.03}));
  map.add(Kind::kClutter, area(12), 1);
  EXPECT_TRUE(map.is_weather());
  EXPECT_TRUE(map.expects_clutter({0.4, 0.9, 0.03, 0.03})) << "anywhere";
  EXPECT_FALSE(map.expects_clutter({0.2, 0.1, 0.1, 0.1})) << "but only of this size";
  map.pass(168s);
  EXPECT_FALSE(map.is_weather()) << "120 s * ln(1 / 0.25) = 166.4 s";
}

TEST(ClutterMap, BoxesMayReachBeyondTheFrame) {
  ClutterMap map(kAspect);
  map.add(Kind::kClutter, {-0.5, -0.5, 0.55, 0.55}, 1);
  map.add(Kind::kClutter, {1.95, 0.95, 0.55, 0.55}, 1);
  EXPECT_TRUE(map.expects_clutter({0, 0, 0.05, 0.05}));
  EXPECT_TRUE(map.expects_clutter({1.95, 0.95, 0.5, 0.5}));
}

}  // namespace
