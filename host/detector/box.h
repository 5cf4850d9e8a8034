// A box around something that moves.
#pragma once

#include <opencv2/core.hpp>
#include <string>
#include <vector>

namespace lm::host::detector {

struct Box {
  cv::Rect2d area{};                   // fractions of the frame, clipped to it
  std::vector<std::string> regions{};  // names of the regions of interest touched, in the document's order
  bool by_light = false;               // caused by a lighting change, not by motion; set by host/events
};

using Boxes = std::vector<Box>;

// Clipped to the frame; empty if outside. What ends within rounding of the right or bottom border ends there.
cv::Rect2d clipped(const cv::Rect2d& area);

}  // namespace lm::host::detector
