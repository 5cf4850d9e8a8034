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

// Levels of brightness: the binary logarithm of each channel plus an offset, so that another light adds the
// same to all of a surface. CV_32FC3.
cv::Mat levels_of(const cv::Mat& picture);

// The part `area`, in pixels of the half size, of a frame.
cv::Mat half_sized(const cv::Mat& frame, const cv::Rect& area);

class Ground {
 public:
  // Whether a frame of this time would be learned.
  bool is_due(std::chrono::microseconds time) const { return learned_ == 0 || time >= next_; }

  // A frame, 8 bits with three channels. `moves`: of half its size, not 0 where nothing is learned.
  void learn(const cv::Mat& frame, std::chrono::microseconds time, const cv::Mat& moves);

  // Levels at half the size; empty before the first frame.
  const cv::Mat& levels() const { return levels_; }

  // The next frame does not follow the last one.
  void forget() { *this = {}; }

 private:
  cv::Mat levels_;
  std::chrono::microseconds next_{0};
  int learned_ = 0;  // frames, up to those of the average
};

}  // namespace lm::host::detector
