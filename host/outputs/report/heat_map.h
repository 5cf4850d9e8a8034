// How often each part of the picture was under a box.
#pragma once

#include <cstdint>
#include <opencv2/core.hpp>

#include "host/events/box.h"

namespace lm::host::outputs::report {

class HeatMap {
 public:
  // Counts per pixel for frames up to 640 pixels per side, per larger cell above.
  explicit HeatMap(cv::Size frame);

  // Overlapping boxes count once.
  void add(const events::Boxes& boxes);

  std::int64_t frames() const { return frames_; }
  cv::Mat counts() const { return counts_; }  // CV_32S
  double highest() const;                     // share of the frames, 0 to 1, at the busiest pixel

  // The counts as colours over a frame. The frame is converted to grey, so that its own colours are not
  // mistaken for counts.
  cv::Mat over(const cv::Mat& frame) const;

 private:
  cv::Mat counts_;
  cv::Mat covered_;  // pixels under the boxes of one frame
  std::int64_t frames_ = 0;
};

// The share of the highest value at a `place` (0 to 1) on the colour scale, which gives rare motion a larger
// part.
double heat_at(double place);

// The picture with a legend of the colours below it.
cv::Mat with_legend(const cv::Mat& picture, double highest);

}  // namespace lm::host::outputs::report
