#include "objects/box.h"

#include <algorithm>
#include <cmath>

#include "base/integers.h"

namespace {

// One axis of two boxes: closed spans [start, end].
struct Span {
  float start;
  float end;
};

struct AxisGap {
  bool overlaps;
  std::int32_t pixels;
};

bool startsWithin(Span a, Span b) { return (a.start - b.start) * (a.start - b.end) <= 0.0F; }

AxisGap gapBetween(Span a, Span b) {
  const std::int32_t before = lm::toInt32(std::fabs(a.start - b.end));
  const std::int32_t after = lm::toInt32(std::fabs(b.start - a.end));
  return {startsWithin(a, b) || startsWithin(b, a), std::min(before, after)};
}

}  // namespace

float calMinDist_ncv(boxRect& a, boxRect& b) {
  const AxisGap gx = gapBetween({a.x, a.x + a.width}, {b.x, b.x + b.width});
  const AxisGap gy = gapBetween({a.y, a.y + a.height}, {b.y, b.y + b.height});
  if (gx.overlaps && gy.overlaps) return static_cast<float>(std::min(gx.pixels, gy.pixels));
  if (gx.overlaps) return static_cast<float>(gy.pixels);
  if (gy.overlaps) return static_cast<float>(gx.pixels);
  const std::int32_t squared =
      lm::wrapAdd(lm::wrapMul(gx.pixels, gx.pixels), lm::wrapMul(gy.pixels, gy.pixels));
  return std::sqrt(static_cast<float>(squared));
}

float calDist_ncv(boxRect& a, boxRect& b) {
  const float dx = a.x - b.x;
  const float dy = a.y - b.y;
  return std::sqrt(dx * dx + dy * dy);
}

boxRect uni_ncv(boxRect& a, boxRect& b) {
  boxRect joined = a;
  joined.x = std::min(a.x, b.x);
  joined.y = std::min(a.y, b.y);
  // Kept: + 1, so that each union is a pixel larger than the covered span and repeated joins grow.
  joined.width = std::max(a.x + a.width, b.x + b.width) - joined.x + 1.0F;
  joined.height = std::max(a.y + a.height, b.y + b.height) - joined.y + 1.0F;
  return joined;
}

bool isOverlap(boxRect& a, boxRect& b) {
  const boxRect joined = uni_ncv(a, b);
  return joined.width <= a.width + b.width && joined.height <= a.height + b.height;
}
