#include "host/detector/box.h"

namespace lm::host::detector {
namespace {

constexpr double kRounding = 1e-6;  // of fractions that are stored in 32 bits; less than half a pixel

double length_inside(double from, double length) { return from + length > 1 - kRounding ? 1 - from : length; }

}  // namespace

cv::Rect2d clipped(const cv::Rect2d& area) {
  const cv::Rect2d inside = area & cv::Rect2d(0, 0, 1, 1);
  if (inside.empty()) return {};
  return {inside.x, inside.y, length_inside(inside.x, inside.width), length_inside(inside.y, inside.height)};
}

}  // namespace lm::host::detector
