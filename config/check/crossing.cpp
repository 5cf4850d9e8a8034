#include "config/check/crossing.h"

namespace lm::check {
namespace {

// The side of the line from `a` to `b` on which the corner lies: above 0, below 0, or 0.
double side(const Corner& a, const Corner& b, const Corner& corner) {
  const double dx = static_cast<double>(b.x) - static_cast<double>(a.x);
  const double dy = static_cast<double>(b.y) - static_cast<double>(a.y);
  return dx * (static_cast<double>(corner.y) - static_cast<double>(a.y)) -
         dy * (static_cast<double>(corner.x) - static_cast<double>(a.x));
}

bool onBothSides(double one, double other) { return (one > 0 && other < 0) || (one < 0 && other > 0); }

bool cross(const Corner& a, const Corner& b, const Corner& c, const Corner& d) {
  return onBothSides(side(a, b, c), side(a, b, d)) && onBothSides(side(c, d, a), side(c, d, b));
}

}  // namespace

std::optional<Crossing> firstCrossing(const std::vector<Corner>& corners) {
  constexpr std::size_t most =
      4096;  // more are not drawn by hand, and every edge is compared with every other
  const std::size_t count = corners.size();
  if (count > most) return std::nullopt;
  for (std::size_t i = 0; i < count; ++i) {
    for (std::size_t k = i + 2; k < count; ++k) {
      if (cross(corners[i], corners[i + 1], corners[k], corners[(k + 1) % count])) return Crossing{i, k};
    }
  }
  return std::nullopt;
}

}  // namespace lm::check
