// Converts decoded pictures of any format and size to frames of one size.
#pragma once

#include <opencv2/core.hpp>

#include "host/source/av.h"

namespace lm::host::source {

class PictureConverter {
 public:
  // `size`: of the pictures before rotation; pictures of another size are scaled to it. `quarter_turns`:
  // clockwise rotation, 0 to 3.
  PictureConverter(cv::Size size, int quarter_turns);

  // The size of the converted images.
  cv::Size size() const;

  // Returns a new image, 8-bit blue, green, red, rows without padding; an empty one if the pixel format
  // cannot be converted.
  cv::Mat convert(const AVFrame& picture);

 private:
  struct Shape {
    int width, height, format, colours, range;
    bool operator==(const Shape&) const = default;
  };
  bool prepare(const AVFrame& picture);

  cv::Size size_;
  int quarter_turns_;
  Shape shape_{};
  av::Scaler scaler_;
  av::Picture padded_;
};

}  // namespace lm::host::source
