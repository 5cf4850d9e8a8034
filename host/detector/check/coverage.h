// The pixels that a document's regions cover, by the plug-in's rules.
#pragma once

#include <opencv2/core.hpp>
#include <optional>

#include "host/detector/check/outlines.h"

namespace lm::host::detector::check {

class Findings;

struct Coverage {
  double watched = 0;  // share of the frame, 0 to 1
  cv::Rect bounds{};   // of the watched area
};

// Reports regions that cover nothing, or nothing that counts. None if counting would take too long.
std::optional<Coverage> check_coverage(const Outlines& outlines, cv::Size frame, Findings& findings);

}  // namespace lm::host::detector::check
