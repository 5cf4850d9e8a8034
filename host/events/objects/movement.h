// How far an object has moved, and how steadily.
#pragma once

#include <chrono>
#include <deque>
#include <opencv2/core.hpp>

namespace lm::host::events::objects {

// The object's box in one frame. Lengths are fractions of the frame's height, in both directions.
struct Look {
  std::chrono::microseconds time;
  cv::Rect2d box;
  double seconds;  // since the frame before
};

struct Movement {
  double distance = 0;    // in sizes of the object: edges of a square of the same area
  double deviation = 0;   // from a uniform motion, root mean square, as a share of the distance
  double unevenness = 0;  // of the size: deviation from a uniform growth, as a share of the mean size
};

// By straight lines fitted to the box's edges. What grows or shrinks moves one edge only, which counts for
// nothing, except where the other edge is that of the frame. `aspect`: the frame's width by its height.
Movement movement(const std::deque<Look>& looks, double aspect);

}  // namespace lm::host::events::objects
