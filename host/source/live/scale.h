// Scales frames down for the analysis.
#pragma once

#include <opencv2/core.hpp>
#include <optional>
#include <string>

namespace lm::host::source::live {

// A factor or a size; full size if neither is given.
struct Scale {
  double factor = 1;
  cv::Size size{};
  bool given = false;

  // The scaled size of such a frame: never larger, at least 1 x 1.
  cv::Size of(cv::Size frame) const;
};

// "0.5" or "640x360"; none for any other text, and for a factor above 1.
std::optional<Scale> parse_scale(const std::string& text);

}  // namespace lm::host::source::live
