// How often each place of the picture was under a box.
#pragma once

#include <cstdint>
#include <opencv2/core.hpp>
#include <vector>

namespace lm::host::outputs::report {

class HeatMap {
 public:
  // Counts are kept for every pixel of frames up to 640 pixels a side, more coarsely for larger ones.
  explicit HeatMap(cv::Size frame);

  // A place under several boxes counts once.
  void add(const std::vector<cv::Rect2d>& boxes);

  std::int64_t frames() const { return frames_; }
  cv::Mat counts() const { return counts_; }  // CV_32S
  double highest() const;                     // share of the frames, 0 to 1, at the busiest place

  // A frame with the counts laid over it in colour. Its own colours are taken away, so that none is mistaken
  // for heat.
  cv::Mat over(const cv::Mat& frame) const;

 private:
  cv::Mat counts_;
  cv::Mat covered_;  // by the boxes of one frame
  std::int64_t frames_ = 0;
};

// Which share of the highest value stands at `place` (0 to 1) along the colours: rare motion gets more of
// them.
double heat_at(double place);

// The picture with a strip below that tells what the colours mean.
cv::Mat with_legend(const cv::Mat& picture, double highest);

}  // namespace lm::host::outputs::report
