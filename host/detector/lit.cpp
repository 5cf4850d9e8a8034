#include "host/detector/lit.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <opencv2/imgproc.hpp>
#include <vector>

#include "host/detector/ground.h"

namespace lm::host::detector {
namespace {

// Gains are binary logarithms of ratios: 0.1 is 7 %.
constexpr float kDarkest = -1.5F;   // gain; deep shadow
constexpr float kBrightest = 2.5F;  // the beam of a headlight
constexpr float kColour = 0.12F;    // difference of the channels' gains
constexpr float kSameColour = 0.03F;
constexpr float kSteep = 0.06F;     // per pixel: the outline of something
constexpr float kSameGain = 0.05F;  // gain against that of the ground around
constexpr int kSaturated = 250;     // grey levels; such pixels have lost colour and texture

constexpr int kWindow = 9;                 // in which textures are compared
constexpr float kLargest = 0.12F;          // detail; larger ones count as this, so that no edge outweighs all
constexpr float kTextureKept = 0.6F;       // of the texture
constexpr float kAnother = 0.4F;           // of it, up to which it is another texture
constexpr float kSure = 0.2F;              // standard error with which it is
constexpr int kFewestCompared = 20;        // pixels in the window
constexpr float kTextured = 2;             // variance of the texture against that of the noise
constexpr int kCluster = 12;               // pixels with kept texture that are no chance
constexpr double kPart = 0.1;              // of a region whose texture must be kept
constexpr double kForEach = 3;             // for each of another texture
constexpr double kGroundToCompare = 0.25;  // of an area: enough to know its gain
constexpr float kGroundNoise = 0.45F;      // of the average, against that of a frame: sqrt(1 / 5)
constexpr float kHalved = 0.6F;            // noise at half the size, which neighbours share in part
constexpr float kPerLevel = static_cast<float>(std::numbers::log2e);  // d log2(x) / dx at 1

struct Gains {
  cv::Mat gain;    // CV_32F, smoothed
  cv::Mat noise;   // of a pixel's gain
  cv::Mat colour;  // difference of the channels' gains
  cv::Mat may_be;  // 255: foreground that may be light by gain and colours
};

Gains compare(const cv::Mat& now, const cv::Mat& levels, const cv::Mat& ground, const cv::Mat& foreground,
              double sigma) {
  cv::Mat smooth;
  cv::blur(levels - ground, smooth, {3, 3});
  const cv::Size size = now.size();
  Gains gains{cv::Mat(size, CV_32F), cv::Mat(size, CV_32F), cv::Mat(size, CV_32F),
              cv::Mat::zeros(size, CV_8U)};
  const float noise_at_one = kPerLevel * kHalved * static_cast<float>(sigma);
  for (int y = 0; y < size.height; ++y) {
    const auto* pixel = now.ptr<cv::Vec3b>(y);
    const auto* level = levels.ptr<cv::Vec3f>(y);
    const auto* before = ground.ptr<cv::Vec3f>(y);
    const auto* ratio = smooth.ptr<cv::Vec3f>(y);
    for (int x = 0; x < size.width; ++x) {
      const auto [least, most] = std::minmax({ratio[x][0], ratio[x][1], ratio[x][2]});
      const float gain = (ratio[x][0] + ratio[x][1] + ratio[x][2]) / 3;
      const float noise = noise_at_one / std::exp2(std::min(level[x][1], before[x][1]));
      gains.gain.at<float>(y, x) = gain;
      gains.noise.at<float>(y, x) = noise;
      gains.colour.at<float>(y, x) = most - least;
      if (foreground.at<std::uint8_t>(y, x) == 0) continue;
      const bool white = gain > 0 && std::max({pixel[x][0], pixel[x][1], pixel[x][2]}) >= kSaturated;
      const bool colours = white || most - least <= kColour + noise;
      if (colours && gain >= kDarkest && gain <= kBrightest) gains.may_be.at<std::uint8_t>(y, x) = 255;
    }
  }
  return gains;
}

cv::Mat mean_of_channels(const cv::Mat& levels) {
  cv::Mat mean;
  cv::transform(levels, mean, cv::Matx13f(1.0F / 3, 1.0F / 3, 1.0F / 3));
  return mean;
}

// What a window of 3 by 3 has in detail.
cv::Mat details_of(const cv::Mat& levels) {
  const cv::Mat mean = mean_of_channels(levels);
  cv::Mat smooth;
  cv::blur(mean, smooth, {3, 3});
  return mean - smooth;
}

struct Textures {
  cv::Mat kept, another;  // 255 or 0; both 0 where there is too little texture to decide
};

// The details of the picture are regressed on those of the ground: the slope is 1 for the same texture in
// any light, and 0 for another one.
Textures textures_of(const cv::Mat& now, const cv::Mat& levels, const cv::Mat& ground, const Gains& gains,
                     double sigma) {
  const cv::Mat detail = details_of(levels);
  const cv::Mat before = details_of(ground);
  const cv::Size size = now.size();
  cv::Mat products(size, CV_32FC4);  // count, variance of the ground's texture, common, difference
  const float noise_at_one = kPerLevel * kHalved * kGroundNoise * static_cast<float>(sigma);
  const auto noise_at = [&](int y, int x) {
    const float noise = noise_at_one / std::exp2(ground.at<cv::Vec3f>(y, x)[1]);
    return noise * noise;
  };
  for (int y = 0; y < size.height; ++y) {
    const auto* pixel = now.ptr<cv::Vec3b>(y);
    const auto* may_be = gains.may_be.ptr<std::uint8_t>(y);
    auto* product = products.ptr<cv::Vec4f>(y);
    for (int x = 0; x < size.width; ++x) {
      product[x] = {};
      if (may_be[x] == 0 || std::max({pixel[x][0], pixel[x][1], pixel[x][2]}) >= kSaturated) continue;
      const float other = std::clamp(detail.at<float>(y, x) - before.at<float>(y, x), -kLargest, kLargest);
      const float own = std::clamp(before.at<float>(y, x), -kLargest, kLargest);
      product[x] = {1, own * own - noise_at(y, x), own * (own + other), other * other};
    }
  }
  cv::boxFilter(products, products, -1, {kWindow, kWindow}, {-1, -1}, false, cv::BORDER_CONSTANT);
  Textures textures{cv::Mat::zeros(size, CV_8U), cv::Mat::zeros(size, CV_8U)};
  for (int y = 0; y < size.height; ++y) {
    for (int x = 0; x < size.width; ++x) {
      if (gains.may_be.at<std::uint8_t>(y, x) == 0) continue;
      const auto [count, variance, common, difference] = products.at<cv::Vec4f>(y, x).val;
      if (count < kFewestCompared || variance <= kTextured * count * noise_at(y, x)) continue;
      const float slope = common / variance;
      const float error = std::sqrt(difference / count / variance);
      const float errors = gains.colour.at<float>(y, x) <= kSameColour ? 3.2F : 4.2F;
      if (slope > kTextureKept && slope > errors * error) textures.kept.at<std::uint8_t>(y, x) = 255;
      if (slope < kAnother && error < kSure) textures.another.at<std::uint8_t>(y, x) = 255;
    }
  }
  return textures;
}

// Foreground that may be light, without the outlines of things, where the gain is steep.
cv::Mat smooth_part(const Gains& gains) {
  cv::Mat across;
  cv::Mat down;
  cv::Sobel(gains.gain, across, CV_32F, 1, 0, 3, 1.0 / 8);
  cv::Sobel(gains.gain, down, CV_32F, 0, 1, 3, 1.0 / 8);
  cv::Mat slope;
  cv::magnitude(across, down, slope);
  return gains.may_be & (slope <= gains.noise * 0.5 + kSteep);
}

// Regions of smooth gain of which enough has kept its texture.
cv::Mat lit_regions(const Gains& gains, const Textures& textures) {
  cv::Mat labels;
  cv::Mat figures;
  cv::Mat centres;
  const int count = cv::connectedComponentsWithStats(smooth_part(gains), labels, figures, centres, 4, CV_32S);
  cv::Mat_<int> kept(1, count, 0);  // pixels of each label
  cv::Mat_<int> another(1, count, 0);
  for (int y = 0; y < labels.rows; ++y) {
    for (int x = 0; x < labels.cols; ++x) {
      const int label = labels.at<int>(y, x);
      kept(0, label) += textures.kept.at<std::uint8_t>(y, x) / 255;
      another(0, label) += textures.another.at<std::uint8_t>(y, x) / 255;
    }
  }
  cv::Mat lit = cv::Mat::zeros(labels.size(), CV_8U);
  for (int y = 0; y < labels.rows; ++y) {
    for (int x = 0; x < labels.cols; ++x) {
      const int label = labels.at<int>(y, x);
      const bool is_lit = label > 0 && kept(0, label) >= kCluster &&
                          kept(0, label) >= kPart * figures.at<int>(label, cv::CC_STAT_AREA) &&
                          kept(0, label) >= kForEach * another(0, label);
      if (is_lit) lit.at<std::uint8_t>(y, x) = 255;
    }
  }
  return lit;
}

// What has kept its texture, without single pixels. A narrow shadow is steep everywhere.
cv::Mat kept_clusters(const Textures& textures) {
  cv::Mat labels;
  cv::Mat figures;
  cv::Mat centres;
  const int count = cv::connectedComponentsWithStats(textures.kept, labels, figures, centres, 8, CV_32S);
  cv::Mat clusters = textures.kept.clone();
  for (int y = 0; y < labels.rows; ++y) {
    for (int x = 0; x < labels.cols; ++x) {
      const int label = labels.at<int>(y, x);
      if (label < count && figures.at<int>(label, cv::CC_STAT_AREA) < kCluster)
        clusters.at<std::uint8_t>(y, x) = 0;
    }
  }
  return clusters;
}

// What has the gain of the ground around: in a place that was foreground before, the ground is an old one.
cv::Mat same_as_around(const Gains& gains, const cv::Mat& foreground) {
  std::vector<float> around;
  for (int y = 0; y < foreground.rows; ++y) {
    for (int x = 0; x < foreground.cols; ++x) {
      if (foreground.at<std::uint8_t>(y, x) == 0) around.push_back(gains.gain.at<float>(y, x));
    }
  }
  float usual = 0;
  if (static_cast<double>(around.size()) >= kGroundToCompare * static_cast<double>(foreground.total())) {
    const auto middle = around.begin() + static_cast<std::ptrdiff_t>(around.size() / 2);
    std::nth_element(around.begin(), middle, around.end());
    usual = *middle;
  }
  return gains.may_be & (cv::abs(gains.gain - usual) <= kSameGain);
}

}  // namespace

Parts parts_of(const cv::Mat& now, const cv::Mat& ground, const cv::Mat& foreground, double sigma) {
  const cv::Mat levels = levels_of(now);
  const Gains gains = compare(now, levels, ground, foreground, sigma);
  if (cv::countNonZero(gains.may_be) < kCluster) return {cv::Mat::zeros(now.size(), CV_8U), foreground};
  const Textures textures = textures_of(now, levels, ground, gains, sigma);
  cv::Mat lit = lit_regions(gains, textures) | kept_clusters(textures);
  cv::dilate(lit, lit, cv::Mat::ones(5, 5, CV_8U));  // the edge of a shadow
  lit = (lit & gains.may_be) | same_as_around(gains, foreground);
  const cv::Mat other = (foreground & ~gains.may_be) | textures.another;
  return {lit, other & ~lit};
}

}  // namespace lm::host::detector
