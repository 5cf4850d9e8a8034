// What the regions of a document cover, pixel by pixel, as the plug-in sees it.
#pragma once

#include <opencv2/core.hpp>
#include <optional>

#include "host/detector/check/outlines.h"

namespace lm::host::detector::check {

class Findings;

struct Coverage {
  double watched = 0;  // share of the frame, 0 to 1
  cv::Rect bounds{};   // of what is watched
};

// Complains of regions that cover nothing, or nothing that counts. None when there is too much to look at.
std::optional<Coverage> check_coverage(const Outlines& outlines, cv::Size frame, Findings& findings);

}  // namespace lm::host::detector::check
