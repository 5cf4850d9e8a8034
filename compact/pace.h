// How fast frames follow each other, for times that are counted in frames.
#pragma once

#include <algorithm>

namespace lm::compact {

// A mean interval that a single gap or jump hardly moves and any lasting change does.
class Pace {
 public:
  // Milliseconds since the frame before; times that do not rise count for nothing.
  void add(double milliseconds) {
    if (!(milliseconds > 0)) return;
    if (interval_ == 0) interval_ = milliseconds;
    interval_ += (std::clamp(milliseconds, interval_ / 2, interval_ * 2) - interval_) / 16;
  }

  // Whole frames in a time, at least 1; 30 per second before any interval. Not more than a life of still
  // foreground can count.
  float frames(double seconds) const {
    constexpr double most = (1 << 22) - 1;
    const double count = seconds * 1000 / (interval_ == 0 ? 1000.0 / 30 : interval_);
    return static_cast<float>(static_cast<int>(std::clamp(count, 1.0, most)));
  }

 private:
  double interval_ = 0;
};

}  // namespace lm::compact
