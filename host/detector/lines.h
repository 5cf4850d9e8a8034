// The lines of the configuration document: an object that crosses one is reported.
#pragma once

#include <opencv2/core.hpp>
#include <optional>
#include <string>
#include <vector>

namespace lm::host::detector {

// The side of a line, seen from its first point towards the second.
enum class Side { kLeft, kRight };

struct Line {
  std::string name;
  cv::Point2d from;  // fractions of the frame
  cv::Point2d to;
  std::optional<Side> only;  // counts crossings to this side only
};

// "left" or "right".
const char* name_of(Side side);

// Those of the key "lines" that have two points; the others are reported by `check`. Coordinates are numbers
// or texts.
std::vector<Line> lines_of(const std::string& document);

}  // namespace lm::host::detector
