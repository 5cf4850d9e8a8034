// The size at which to show a picture.
#pragma once

#include <algorithm>
#include <cmath>
#include <opencv2/core.hpp>

namespace lm::host::outputs::report {

// The size with square pixels, with both sides at most `longest`. Never enlarged, except in width for pixels
// wider than high.
inline cv::Size shown_size(cv::Size stored, cv::Size pixel_aspect, int longest) {
  const double width = double(stored.width) * pixel_aspect.width / pixel_aspect.height;
  const double scale = std::min(1.0, longest / std::max(width, double(stored.height)));
  const auto side = [&](double length) { return std::max(1, int(std::lround(length * scale))); };
  return {side(width), side(stored.height)};
}

}  // namespace lm::host::outputs::report
