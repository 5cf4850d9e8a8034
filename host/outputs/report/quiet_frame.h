// A picture of the scene as background for the heat map.
#pragma once

#include <opencv2/core.hpp>

namespace lm::host::outputs::report {

// The first frame without a box, or else the first frame; black before any frame.
class QuietFrame {
 public:
  explicit QuietFrame(cv::Size size) : image_(cv::Mat::zeros(size, CV_8UC3)) {}

  // Copies the image, because boxes may be drawn into it later.
  void offer(const cv::Mat& image, bool quiet) {
    if (quiet_ || (any_ && !quiet)) return;
    image.copyTo(image_);
    any_ = true;
    quiet_ = quiet;
  }

  const cv::Mat& image() const { return image_; }

 private:
  cv::Mat image_;
  bool any_ = false;
  bool quiet_ = false;
};

}  // namespace lm::host::outputs::report
