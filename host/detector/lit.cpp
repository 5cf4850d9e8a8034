#include "host/detector/lit.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <opencv2/imgproc.hpp>
#include <vector>

#include "host/detector/gains.h"
#include "host/detector/masks.h"
#include "host/detector/textures.h"

namespace lm::host::detector {
namespace {

constexpr float kSteep = 0.06F * kOctave;  // per pixel: the outline of something
constexpr int kSameGain = 26;              // 0.05 octaves: gain against that of the ground around
constexpr int kCluster = 12;               // pixels with kept texture that are no chance
constexpr double kPart = 0.1;              // of a region whose texture must be kept
constexpr double kForEach = 3;             // for each of another texture
constexpr int kGroundToCompare = 4;        // share of an area that is enough to know its gain: a quarter

using Mask = cv::Mat_<std::uint8_t>;

// Foreground that may be light, without the outlines of things, where the gain is steep.
Mask smooth_part(const Gains& gains, float noise) {
  const Gains::Plane& gain = gains.gain;
  Mask smooth(gain.size());
  const int width = gain.cols;
  std::vector<std::int16_t> rows(2 * static_cast<std::size_t>(width) + 4);
  std::int16_t* sum = rows.data() + 1;  // of the rows around, and their difference
  std::int16_t* difference = sum + width + 2;
  for (int y = 0; y < gain.rows; ++y) {
    const std::int16_t* above = gain[std::max(y - 1, 0)];
    const std::int16_t* row = gain[y];
    const std::int16_t* below = gain[std::min(y + 1, gain.rows - 1)];
    for (int x = 0; x < width; ++x) {
      sum[x] = narrow(above[x] + 2 * row[x] + below[x]);
      difference[x] = narrow(below[x] - above[x]);
    }
    for (std::int16_t* of : {sum, difference}) {
      of[-1] = of[0];
      of[width] = of[width - 1];
    }
    const std::int16_t* dark = gains.dark[y];
    const std::uint8_t* may_be = gains.may_be[y];
    std::uint8_t* to = smooth[y];
    for (int x = 0; x < width; ++x) {  // Sobel's operators
      const auto across = static_cast<float>(narrow(sum[x + 1] - sum[x - 1]));
      const auto down = static_cast<float>(narrow(difference[x - 1] + 2 * difference[x] + difference[x + 1]));
      const float limit = 8 * (noise / 2 / static_cast<float>(dark[x]) + kSteep);
      to[x] = ((may_be[x] != 0) & (across * across + down * down <= limit * limit)) ? 255 : 0;
    }
  }
  return smooth;
}

// Sets the regions of smooth gain of which enough has kept its texture.
void set_lit_regions(Mask& lit, const Gains& gains, const Textures& textures, float noise) {
  const ConnectedParts regions = connected_parts(smooth_part(gains, noise), Touching::kSides);
  std::vector<int> kept(regions.areas.size());  // pixels of each region
  std::vector<int> another(regions.areas.size());
  for (const Run& run : regions.runs) {
    kept[static_cast<std::size_t>(run.part)] += count_in(run, textures.kept);
    another[static_cast<std::size_t>(run.part)] += count_in(run, textures.another);
  }
  for (const Run& run : regions.runs) {
    const auto i = static_cast<std::size_t>(run.part);
    if (kept[i] >= kCluster && kept[i] >= kPart * regions.areas[i] && kept[i] >= kForEach * another[i])
      set(lit, run, 255);
  }
}

// Sets what has kept its texture, without single pixels. A narrow shadow is steep everywhere.
void set_kept_clusters(Mask& lit, const Textures& textures) {
  const ConnectedParts clusters = connected_parts(textures.kept, Touching::kCorners);
  for (const Run& run : clusters.runs) {
    if (clusters.areas[static_cast<std::size_t>(run.part)] >= kCluster) set(lit, run, 255);
  }
}

// Most of the ground around has at most this gain; 0 if there is too little of it.
int usual_gain(const Gains& gains, const Mask& foreground) {
  constexpr int kMost = kOctave;  // larger gains count as this
  std::array<int, 2 * kMost + 1> counts{};
  int all = 0;
  for (int y = 0; y < foreground.rows; y += 2) {
    const std::int16_t* gain = gains.gain[y];
    const std::uint8_t* inside = foreground[y];
    for (int x = 0; x < foreground.cols; ++x) {
      if (inside[x] != 0) continue;
      const int place = std::clamp<int>(gain[x], -kMost, kMost) + kMost;
      ++counts[static_cast<std::size_t>(place)];
      ++all;
    }
  }
  if (2 * kGroundToCompare * all < static_cast<int>(foreground.total())) return 0;
  std::size_t middle = 0;
  for (int below = counts[0]; 2 * below <= all; below += counts[middle]) ++middle;
  return static_cast<int>(middle) - kMost;
}

// What is light: of `lit` what may be, and what has the gain of the ground around, because in a place that
// was foreground before, the ground is an old one.
void limit(Mask& lit, const Gains& gains, int usual) {
  for (int y = 0; y < lit.rows; ++y) {
    const std::int16_t* gain = gains.gain[y];
    const std::uint8_t* may_be = gains.may_be[y];
    std::uint8_t* of = lit[y];
    const int width = lit.cols;
#pragma omp simd
    for (int x = 0; x < width; ++x) {
      const bool same = (gain[x] - usual <= kSameGain) & (usual - gain[x] <= kSameGain);
      of[x] = ((may_be[x] != 0) & ((of[x] != 0) | same)) ? 255 : 0;
    }
  }
}

// What is an object, where it is not light.
Mask others(const Mask& foreground, const Gains& gains, const Textures& textures, const Mask& lit) {
  Mask other(lit.size());
  const int width = lit.cols;
  for (int y = 0; y < lit.rows; ++y) {
    const std::uint8_t* inside = foreground[y];
    const std::uint8_t* may_be = gains.may_be[y];
    const std::uint8_t* another = textures.another[y];
    const std::uint8_t* light = lit[y];
    std::uint8_t* to = other[y];
#pragma omp simd
    for (int x = 0; x < width; ++x)
      to[x] = static_cast<std::uint8_t>(((inside[x] & ~may_be[x]) | another[x]) & ~light[x]);
  }
  return other;
}

}  // namespace

Parts parts_of(const cv::Mat& now, const cv::Mat& ground, const cv::Mat& foreground, double sigma) {
  const Gains gains = gains_of(now, ground, foreground, sigma);
  Mask lit(now.size(), 0);
  if (cv::countNonZero(gains.may_be) < kCluster) return {lit, foreground};
  const Textures textures = textures_of(gains, sigma);
  if (cv::countNonZero(textures.kept) >= kCluster) {
    set_lit_regions(lit, gains, textures, noise_at_one(sigma));
    set_kept_clusters(lit, textures);
    lit = dilated(dilated(lit));  // the edge of a shadow
  }
  limit(lit, gains, usual_gain(gains, foreground));
  return {lit, others(foreground, gains, textures, lit)};
}

}  // namespace lm::host::detector
