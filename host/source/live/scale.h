// Frames made smaller for the analysis.
#pragma once

#include <opencv2/core.hpp>
#include <optional>
#include <string>

namespace lm::host::source::live {

// Either a factor or a size; all of the frame when neither is given.
struct Scale {
  double factor = 1;
  cv::Size size{};

  // What becomes of a frame of this size: never more than it is, never nothing.
  cv::Size of(cv::Size frame) const;
};

// "0.5" or "640x360"; none for anything else, and for a factor above 1.
std::optional<Scale> parse_scale(const std::string& text);

// The image itself where it has that size; otherwise a smaller one, each pixel the mean of those it stands
// for.
cv::Mat scaled(const cv::Mat& image, cv::Size size);

}  // namespace lm::host::source::live
