// The compact engine gives what the open one gives, over random configurations and scenes.
//
//   LIGHTMOTION_COMPACT_SEED      first seed; alone, only this one is run
//   LIGHTMOTION_COMPACT_MINUTES   seed after seed for so long
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <random>

#include "tests/compact/pair.h"

namespace {

using Shape = lm::compact::Shape;

class Dice {
 public:
  explicit Dice(std::uint32_t seed) : engine_(seed) {}
  int below(int limit) { return static_cast<int>(engine_() % static_cast<std::uint32_t>(limit)); }
  int from(int low, int high) { return low + below(high - low + 1); }
  bool chance(int percent) { return below(100) < percent; }
  template <typename T>
  T oneOf(std::initializer_list<T> values) {
    return values.begin()[below(static_cast<int>(values.size()))];
  }
  double normal(double deviation) { return deviation * normal_(engine_); }

 private:
  std::mt19937 engine_;
  std::normal_distribution<double> normal_{0, 1};
};

enum class Kind { passing, stopping, blinking, brightening, dimming, arbitrary };

struct Scene {
  Shape shape;
  Kind kind;
  double noise;
};

// A textured background and a rectangle, with Gaussian noise.
std::vector<std::uint8_t> draw(const Scene& scene, int frame, Dice& dice) {
  const auto& [width, height, channels] = scene.shape;
  const bool stands = scene.kind == Kind::stopping;
  const bool present = !stands || (frame >= 5 && frame <= 60);
  const int left = stands ? width / 3 : frame * 3 % (width + 20) - 10;
  const int top = stands ? height / 3 : frame * 2 % (height + 10) - 5;
  int light = 0;
  if (scene.kind == Kind::blinking && frame % 4 == 0) light = 30;
  if (scene.kind == Kind::brightening) light = frame / 2;
  if (scene.kind == Kind::dimming) light = -frame / 3;
  std::vector<std::uint8_t> pixels;
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      const bool inside = present && x >= left && x < left + std::max(8, width / 4) && y >= top &&
                          y < top + std::max(8, height / 4);
      for (int channel = 0; channel < channels; ++channel) {
        const double value = inside ? 220 - 30 * channel : 60 + (x * 7 + y * 13) % 90 + 10 * channel + light;
        const double noisy =
            scene.kind == Kind::arbitrary ? dice.below(256) : value + dice.normal(scene.noise);
        pixels.push_back(static_cast<std::uint8_t>(std::lround(std::clamp(noisy, 0.0, 255.0))));
      }
    }
  }
  return pixels;
}

polygon polygonOf(std::vector<pnt> points) {
  polygon region;
  region.name = "region";
  region.points = std::move(points);
  return region;
}

// A polygon whose corners may lie a little outside the frame.
polygon anyPolygon(const Shape& shape, Dice& dice) {
  std::vector<pnt> points;
  for (int corners = dice.from(3, 6); corners > 0; --corners) {
    points.push_back({dice.from(-1, shape.width), dice.from(-1, shape.height)});
  }
  return polygonOf(points);
}

std::vector<std::string> anyEntries(const Shape& shape, Dice& dice) {
  std::vector<std::string> entries = {"frmW " + std::to_string(shape.width),
                                      "frmH " + std::to_string(shape.height),
                                      "frmChn " + std::to_string(shape.channels)};
  const auto maybe = [&](int percent, const char* key, std::initializer_list<const char*> values) {
    if (dice.chance(percent)) entries.push_back(std::string(key) + " " + dice.oneOf(values));
  };
  maybe(80, "sensitivity", {"1", "2", "3", "4", "5", "-1"});
  maybe(50, "lcAdap", {"1", "2", "3", "4", "5"});
  maybe(50, "lifeStatic", {"0", "-1", "-2"});
  maybe(50, "minBoxW", {"0.01", "0.2"});
  maybe(20, "MIN_MATCH_NUM", {"1", "3", "20"});
  maybe(20, "MIN_MATCH_DIST", {"1", "60", "254"});
  maybe(20, "THR_DIFF_HEURISTIC", {"0", "3", "255", "1000"});
  maybe(20, "NUM_SEGMENT_LOCK", {"1", "7", "20"});
  maybe(20, "NUM_PERIOD_LOCK", {"1", "5"});
  maybe(10, "GHOST_SUPPRESSION", {"0"});
  maybe(10, "ILLUMINATION_CHANGE", {"0"});
  return entries;
}

std::string run(std::uint32_t seed, int level) {
  Dice dice(seed);
  const Shape shape{dice.from(1, 150), dice.from(1, 60), dice.oneOf({1, 3, 3, 4})};
  const Scene scene{shape,
                    dice.oneOf({Kind::passing, Kind::stopping, Kind::blinking, Kind::brightening,
                                Kind::dimming, Kind::arbitrary}),
                    dice.oneOf({0.5, 1.5, 2.5, 4.0})};
  std::vector<polygon> include;
  std::vector<polygon> exclude;
  if (dice.chance(40)) {
    include.push_back(
        polygonOf({{-1, -1}, {shape.width, -1}, {shape.width, shape.height}, {-1, shape.height}}));
  } else {
    for (int count = dice.from(1, 3); count > 0; --count) include.push_back(anyPolygon(shape, dice));
  }
  if (dice.chance(40)) exclude.push_back(anyPolygon(shape, dice));
  Pair pair(shape, anyEntries(shape, dice), include, exclude, level);
  if (!pair.suits()) return "the compact engine does not take it";
  const int frames = dice.from(20, scene.kind == Kind::stopping ? 120 : 60);
  std::int64_t time = 1000;
  for (int frame = 0; frame < frames; ++frame) {
    const std::string difference = pair.feed(draw(scene, frame, dice), std::to_string(time));
    if (!difference.empty()) {
      return "seed " + std::to_string(seed) + ", level " + std::to_string(level) + ", frame " +
             std::to_string(frame) + ": " + difference;
    }
    time += dice.chance(5) ? 500 : 40;
  }
  return "";
}

int number(const char* variable, int otherwise) {
  const char* text = std::getenv(variable);
  return text == nullptr ? otherwise : std::atoi(text);
}

TEST(CompactEngine, GivesWhatTheOpenEngineGives) {
  const bool repeats = std::getenv("LIGHTMOTION_COMPACT_SEED") != nullptr;
  const auto first = static_cast<std::uint32_t>(number("LIGHTMOTION_COMPACT_SEED", 1));
  const std::chrono::minutes minutes(number("LIGHTMOTION_COMPACT_MINUTES", 0));
  const std::uint32_t rounds = repeats ? 1 : 60;
  const auto end = std::chrono::steady_clock::now() + minutes;
  std::uint32_t seed = first;
  for (; seed < first + rounds || std::chrono::steady_clock::now() < end; ++seed) {
    for (const int level : levels()) ASSERT_EQ(run(seed, level), "");
  }
  if (minutes.count() > 0) std::printf("%u configurations\n", seed - first);
}

}  // namespace
