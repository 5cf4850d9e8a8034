// How noisy a picture is, measured while things move in it, and the sensitivity for it.
#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <opencv2/core.hpp>
#include <optional>
#include <vector>

namespace lm::host::detector {

// Measures the standard deviation of the temporal noise from the differences of successive frames at some
// thousand pixels. The median of their absolute values ignores what moves, up to half of the picture; changes
// of the whole picture's brightness are subtracted; values near 0 and 255, which are clipped, and pixels that
// an encoder has repeated are left out. Noise depends on brightness, so that dark, medium and bright pixels
// are measured apart: the noisiest count.
class NoiseMeter {
 public:
  // A frame: 8 bits per channel, 1 or 3 channels, always of the same size.
  void add(const cv::Mat& picture, std::chrono::microseconds time);

  // The next frame does not follow the last one. What was measured is kept.
  void interrupt() { before_.clear(); }

  // Grey levels, the largest of all channels; none until there are enough frames.
  std::optional<double> sigma() const;
  // Of a channel.
  std::optional<double> sigma(int channel) const;

 private:
  static constexpr int kLevels = 3;
  using Histogram = std::array<float, 256>;

  std::vector<std::uint8_t> sampled(const cv::Mat& picture) const;
  void compare(const std::vector<std::uint8_t>& now, int channel);
  void age(std::chrono::microseconds time);

  int channels_ = 0;
  int frames_ = 0;  // compared
  std::chrono::microseconds aged_{0};
  std::vector<std::uint8_t> before_;                             // samples, in groups of four neighbours
  std::vector<bool> repeated_;                                   // per group
  std::array<std::array<Histogram, kLevels>, 3> differences_{};  // of a channel at a brightness
};

// The sensitivity for a level of noise, changed late enough that it does not go back and forth.
class NoiseRule {
 public:
  // A new sensitivity, 1 to 5, when it has to change.
  std::optional<int> update(double sigma, std::chrono::microseconds time);

  int sensitivity() const { return sensitivity_; }

  // Without a history.
  static int sensitivity_for(double sigma);

 private:
  int sensitivity_ = 4;
  std::optional<std::chrono::microseconds> other_since_;
};

}  // namespace lm::host::detector
