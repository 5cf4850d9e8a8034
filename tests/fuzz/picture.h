// Frames and times from an input's choices.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "tests/fuzz/target.h"

namespace fuzz {

// A picture that changes from frame to frame.
class Picture {
 public:
  Picture(int width, int height, int channels) : width_(width), height_(height), channels_(channels) {
    resize();
  }

  // In one of six ways, 1 to 6; any other leaves it.
  void change(int how, Choices& choices) {
    switch (how) {
      case 1:
        return fill(choices);
      case 2:
        return rectangle(choices);
      case 3:
        return noise(choices);
      case 4:
        return light(choices);
      case 5:
        return raw(choices);
      case 6:
        rectangle(choices);
        return rectangle(choices);
      default:
        return;
    }
  }

  const std::vector<std::uint8_t>& pixels() const { return pixels_; }

 protected:
  void resize() { pixels_.resize(static_cast<std::size_t>(width_ * height_ * channels_), 70); }

  std::vector<std::uint8_t> pixels_;
  int width_, height_, channels_;

 private:
  void fill(Choices& choices) { std::fill(pixels_.begin(), pixels_.end(), choices.byte()); }

  void rectangle(Choices& choices) {
    const int left = choices.below(width_);
    const int top = choices.below(height_);
    const int right = std::min(width_, left + 1 + choices.below(width_));
    const int bottom = std::min(height_, top + 1 + choices.below(height_));
    const std::uint8_t value = choices.byte();
    for (int y = top; y < bottom; ++y) {
      const auto row = pixels_.begin() + y * width_ * channels_;
      std::fill(row + left * channels_, row + right * channels_, value);
    }
  }

  void noise(Choices& choices) {
    std::uint32_t state = choices.byte();
    const std::uint32_t amplitude = choices.byte() % 64U + 1;
    for (std::uint8_t& value : pixels_) {
      state = state * 1664525U + 1013904223U;
      value = static_cast<std::uint8_t>(value + (state >> 16U) % amplitude);
    }
  }

  void light(Choices& choices) {
    const int amount = choices.between(-40, 40);
    for (std::uint8_t& value : pixels_) value = static_cast<std::uint8_t>(std::clamp(value + amount, 0, 255));
  }

  void raw(Choices& choices) {
    const std::size_t from = choices.byte() * pixels_.size() / 256;
    for (std::size_t i = from; i < std::min(pixels_.size(), from + 64); ++i) pixels_[i] = choices.byte();
  }
};

constexpr std::array oddTimes = {
    "0",  "-1",  "1",   "9223372036854775807", "-9223372036854775808", "9223372036854775806", "2147483648",
    "+5", " 77", "12px"};

// Timestamps of frames that follow each other, and some that do not.
class Times {
 public:
  std::string next(Choices& choices) {
    const int choice = choices.byte();
    if (choice >= 240) return choices.of(oddTimes);
    last_ += choice;
    return std::to_string(last_);
  }

 private:
  std::int64_t last_ = 1000;
};

}  // namespace fuzz
