// Selects the boxes of motion or of a lighting change.
#pragma once

#include <opencv2/core.hpp>
#include <vector>

#include "host/events/event.h"

namespace lm::host::outputs::report {

inline std::vector<cv::Rect2d> boxes_of_kind(const events::Observation& seen, events::EventKind kind) {
  std::vector<cv::Rect2d> boxes;
  for (std::size_t i = 0; i < seen.boxes.size(); ++i) {
    const bool light = i < seen.by_light.size() && seen.by_light[i];
    if (light == (kind == events::EventKind::kLight)) boxes.push_back(seen.boxes[i]);
  }
  return boxes;
}

}  // namespace lm::host::outputs::report
