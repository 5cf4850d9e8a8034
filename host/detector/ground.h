// What the picture shows where nothing moves, at half its size and averaged over some frames.
//
// The background of the library is not enough to compare textures with: its pixels are written one by one,
// at different times, so that after a lighting change neighbours are in different light.
#pragma once

#include <chrono>
#include <opencv2/core.hpp>

namespace lm::host::detector {

// Half of a frame's size; one pixel of it is two by two of the frame.
cv::Size half_of(const cv::Size& frame);

// The part `area`, in pixels of the half size, of a frame.
cv::Mat half_sized(const cv::Mat& frame, const cv::Rect& area);

class Ground {
 public:
  static constexpr int kCell = 4;   // side in pixels of the half size
  static constexpr int kOne = 128;  // a grey level in the picture

  // Of a frame of half this size.
  static cv::Size cells_of(const cv::Size& half);

  // Whether a frame of this time would be learned.
  bool is_due(std::chrono::microseconds time) const { return learned_ == 0 || time >= next_; }

  // A frame, 8 bits with three channels. `moves`, CV_8U: its cells, not 0 where nothing is learned.
  void learn(const cv::Mat& frame, std::chrono::microseconds time, const cv::Mat& moves);

  // CV_16SC3, in parts of a grey level, of half a frame's size; empty before the first frame.
  const cv::Mat& picture() const { return picture_; }

 private:
  cv::Mat picture_;
  cv::Mat now_;  // a frame at half its size; kept because large blocks are slow to allocate
  std::chrono::microseconds next_{0};
  int learned_ = 0;  // frames, up to those of the average
};

}  // namespace lm::host::detector
