// How much brighter the picture is than the ground, pixel by pixel, and which pixels may be the same ground
// in another light by that.
#pragma once

#include <cstdint>
#include <opencv2/core.hpp>

namespace lm::host::detector {

// Brightness on a logarithmic scale, on which another light adds the same to all of a surface: kOctave is
// twice as bright.
constexpr int kOctave = 512;
constexpr int kSaturated = 250;  // grey levels; such pixels have lost colour and texture

// A standard deviation, in grey levels, as a difference of brightness at one grey level; at others it is the
// quotient.
float noise_at_one(double sigma);

// Planes of the size of the part of the picture.
struct Gains {
  using Plane = cv::Mat_<std::int16_t>;
  Plane ground;                   // brightness of the ground
  Plane step;                     // that of the picture less that of the ground
  Plane gain;                     // its average over 3 by 3 pixels
  Plane colour;                   // largest difference of the channels' gains: sum of nine pixels
  Plane dark, base;               // grey levels and the offset of the scale: the darker one; the ground
  cv::Mat_<std::uint8_t> peak;    // the largest channel of the picture, in grey levels
  cv::Mat_<std::uint8_t> may_be;  // 255: foreground that may be light by gain and colours
};

inline std::int16_t narrow(int value) { return static_cast<std::int16_t>(value); }

// Rounded.
inline std::int16_t ninth(std::int16_t value) {
  return narrow((narrow(value + 4) * std::int16_t{7282}) >> 16);
}

// The arguments of parts_of (lit.h).
Gains gains_of(const cv::Mat& now, const cv::Mat& ground, const cv::Mat& foreground, double sigma);

// The sums of 3 by 3 pixels. Beyond the border is what lies at it.
Gains::Plane sums_of_nine(const Gains::Plane& of);

}  // namespace lm::host::detector
