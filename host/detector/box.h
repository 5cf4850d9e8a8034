// A box around something that moves.
#pragma once

#include <cstdint>
#include <opencv2/core.hpp>
#include <string>
#include <vector>

namespace lm::host::detector {

struct Box {
  cv::Rect2d area{};                   // fractions of the frame, clipped to it
  std::vector<std::string> regions{};  // names of the regions of interest touched, in the document's order
  bool by_light = false;               // caused by a lighting change, not by motion
  // The following are set by host/events.
  std::int64_t id = 0;                 // of the object in it; 0 if unknown
  std::vector<std::int64_t> others{};  // ids of further objects in it
  bool confirmed = true;               // as an object; otherwise it is likely one
  bool examined = false;               // the detector has set by_light; otherwise host/events does
};

using Boxes = std::vector<Box>;

// Clipped to the frame; empty if outside. What ends within rounding of the right or bottom border ends there.
cv::Rect2d clipped(const cv::Rect2d& area);

}  // namespace lm::host::detector
