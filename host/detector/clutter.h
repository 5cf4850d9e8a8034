// How many layers are peeled off the foreground, by how much short-lived clutter there is.
#pragma once

#include <chrono>
#include <deque>
#include <opencv2/core.hpp>
#include <optional>
#include <vector>

namespace lm::host::detector {

// Few layers keep small and thin things, but also rain, snow and noise. A thing is seen several times at
// about the same place, a drop once. So boxes without another one near them shortly before and after are
// counted: where there are many, one layer more is peeled off. After a time without any, one layer less is
// tried; the time doubles whenever there was clutter again.
class ClutterRule {
 public:
  // The boxes of a frame, in pixels. Another number of layers, 1 to 3, when it has to change.
  std::optional<int> update(const std::vector<cv::Rect>& boxes, std::chrono::microseconds time);

  int peel() const { return peel_; }

  // The next frame does not follow the last one.
  void interrupt() { frames_.clear(); }

 private:
  int lonely() const;
  int change(int by, std::chrono::microseconds time);

  std::deque<std::vector<cv::Rect>> frames_;  // oldest first
  double rate_ = 0;                           // lonely boxes per frame, of late
  int peel_ = 3;
  std::optional<std::chrono::microseconds> since_;               // the last change, or the last lonely boxes
  std::chrono::microseconds patience_{std::chrono::seconds(2)};  // before fewer layers are tried
};

}  // namespace lm::host::detector
