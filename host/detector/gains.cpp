#include "host/detector/gains.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <vector>

#include "host/detector/ground.h"

namespace lm::host::detector {
namespace {

constexpr int kDarkest = -3 * kOctave / 2;   // gain; deep shadow
constexpr int kBrightest = 5 * kOctave / 2;  // the beam of a headlight
constexpr float kColour = 0.12F * kOctave;   // difference of the channels' gains: 9 %
constexpr float kHalved = 0.6F;              // noise at half the size, which neighbours share in part

// Small enough to tell dark surfaces apart, large enough that their noise is not all that remains.
constexpr int kOffset = 4;

constexpr int kFine = 16;  // entries of the table per grey level

using Levels = std::array<std::int16_t, 255 * kFine + 1>;

Levels table_of_levels() {
  Levels table{};
  for (std::size_t i = 0; i < table.size(); ++i) {
    const double octaves = std::log2(static_cast<double>(i) / kFine + kOffset);
    table[i] = static_cast<std::int16_t>(std::lround(kOctave * octaves));
  }
  return table;
}

using Steps = std::array<Gains::Plane, 3>;  // of the channels

std::int16_t level_of(const Levels& levels, int fine) { return levels[static_cast<std::size_t>(fine)]; }

// Compares the picture with the ground.
void compare(const cv::Mat& now, const cv::Mat& ground, Gains& gains, Steps& steps) {
  static const Levels kLevels = table_of_levels();
  const Levels& levels = kLevels;
  for (int y = 0; y < now.rows; ++y) {
    const auto* pixel = now.ptr<std::uint8_t>(y);
    const auto* before = ground.ptr<std::int16_t>(y);
    std::int16_t* step[] = {steps[0][y], steps[1][y], steps[2][y]};
    std::int16_t* level = gains.ground[y];
    std::int16_t* dark = gains.dark[y];
    std::int16_t* base = gains.base[y];
    std::uint8_t* peak = gains.peak[y];
    for (int x = 0; x < now.cols; ++x, pixel += 3, before += 3) {
      const int b = level_of(levels, before[0] / (Ground::kOne / kFine));
      const int g = level_of(levels, before[1] / (Ground::kOne / kFine));
      const int r = level_of(levels, before[2] / (Ground::kOne / kFine));
      step[0][x] = narrow(level_of(levels, pixel[0] * kFine) - b);
      step[1][x] = narrow(level_of(levels, pixel[1] * kFine) - g);
      step[2][x] = narrow(level_of(levels, pixel[2] * kFine) - r);
      level[x] = narrow((b + 2 * g + r) / 4);
      const int green = before[1] / Ground::kOne;
      base[x] = narrow(green + kOffset);
      dark[x] = narrow(std::min<int>(pixel[1], green) + kOffset);
      peak[x] = std::max({pixel[0], pixel[1], pixel[2]});
    }
  }
}

// Which pixels may be light.
void choose(const Steps& sums, const cv::Mat& foreground, float noise, Gains& gains) {
  const int width = foreground.cols;
  for (int y = 0; y < foreground.rows; ++y) {
    const std::int16_t* b = sums[0][y];
    const std::int16_t* g = sums[1][y];
    const std::int16_t* r = sums[2][y];
    const auto* inside = foreground.ptr<std::uint8_t>(y);
    const std::int16_t* dark = gains.dark[y];
    const std::uint8_t* peak = gains.peak[y];
    std::int16_t* gain = gains.gain[y];
    std::int16_t* colour = gains.colour[y];
    std::uint8_t* may_be = gains.may_be[y];
#pragma omp simd
    for (int x = 0; x < width; ++x) {
      const std::int16_t mean = ninth(narrow((b[x] >> 2) + (g[x] >> 1) + (r[x] >> 2)));
      const int most = std::max<int>(std::max<int>(b[x], g[x]), r[x]);
      const int least = std::min<int>(std::min<int>(b[x], g[x]), r[x]);
      const int range = std::min<int>(most - least, INT16_MAX);
      gain[x] = mean;
      colour[x] = narrow(range);
      const bool white = (mean > 0) & (peak[x] >= kSaturated);
      const bool colours =
          (static_cast<float>(range) - 9 * kColour) * static_cast<float>(dark[x]) <= 9 * noise;
      const bool in_range = (mean >= kDarkest) & (mean <= kBrightest);
      may_be[x] = ((inside[x] != 0) & (white | colours) & in_range) ? 255 : 0;
    }
  }
}

// Each channel's, as one of two.
void add_up(const Steps& steps, Gains::Plane& step) {
  for (int y = 0; y < step.rows; ++y) {
    const std::int16_t* of[] = {steps[0][y], steps[1][y], steps[2][y]};
    std::int16_t* to = step[y];
    for (int x = 0; x < step.cols; ++x) to[x] = narrow((of[0][x] + 2 * of[1][x] + of[2][x]) / 4);
  }
}

}  // namespace

float noise_at_one(double sigma) {
  return kOctave * std::numbers::log2e_v<float> * kHalved * static_cast<float>(sigma);
}

Gains::Plane sums_of_nine(const Gains::Plane& of) {
  Gains::Plane sums(of.size());
  const int width = of.cols;
  std::vector<std::int16_t> column(static_cast<std::size_t>(width) + 2);
  std::int16_t* three = column.data() + 1;
  for (int y = 0; y < of.rows; ++y) {
    const std::int16_t* above = of[std::max(y - 1, 0)];
    const std::int16_t* row = of[y];
    const std::int16_t* below = of[std::min(y + 1, of.rows - 1)];
    for (int x = 0; x < width; ++x) three[x] = narrow(above[x] + row[x] + below[x]);
    three[-1] = three[0];
    three[width] = three[width - 1];
    std::int16_t* sum = sums[y];
    for (int x = 0; x < width; ++x) sum[x] = narrow(three[x - 1] + three[x] + three[x + 1]);
  }
  return sums;
}

Gains gains_of(const cv::Mat& now, const cv::Mat& ground, const cv::Mat& foreground, double sigma) {
  const cv::Size size = now.size();
  const auto plane = [&] { return Gains::Plane(size); };
  Gains gains{plane(),
              plane(),
              plane(),
              plane(),
              plane(),
              plane(),
              cv::Mat_<std::uint8_t>(size),
              cv::Mat_<std::uint8_t>(size)};
  Steps steps{plane(), plane(), plane()};
  compare(now, ground, gains, steps);
  add_up(steps, gains.step);
  for (Gains::Plane& step : steps) step = sums_of_nine(step);
  choose(steps, foreground, noise_at_one(sigma), gains);
  return gains;
}

}  // namespace lm::host::detector
