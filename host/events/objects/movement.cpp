#include "host/events/objects/movement.h"

#include <algorithm>
#include <cmath>

namespace lm::host::events::objects {
namespace {

using Looks = std::deque<Look>;

constexpr double kFrameEdge = 0.01;  // of the frame's height
constexpr double kNothing = 1e-6;    // a distance of 0 would divide

double seconds_since(const Look& first, const Look& look) {
  return std::chrono::duration<double>(look.time - first.time).count();
}

struct Fit {
  double shift = 0;      // from the first look to the last
  double deviation = 0;  // root mean square
};

// A least-squares line through `value` of each look over time.
template <typename Value>
Fit fit(const Looks& looks, Value value) {
  const auto count = static_cast<double>(looks.size());
  double mean_time = 0;
  double mean = 0;
  for (const Look& look : looks) {
    mean_time += seconds_since(looks.front(), look) / count;
    mean += value(look.box) / count;
  }
  double times = 0;
  double products = 0;
  double squares = 0;
  for (const Look& look : looks) {
    const double time = seconds_since(looks.front(), look) - mean_time;
    const double off = value(look.box) - mean;
    times += time * time;
    products += time * off;
    squares += off * off;
  }
  if (times == 0) return {};
  const double slope = products / times;
  return {slope * seconds_since(looks.front(), looks.back()),
          std::sqrt(std::max(0.0, squares - slope * products) / count)};
}

// In one direction, in which the frame ends at `end`.
template <typename Low, typename High>
Fit shift(const Looks& looks, double end, Low low, High high) {
  const bool at_start = std::ranges::any_of(looks, [&](const Look& l) { return low(l.box) < kFrameEdge; });
  const bool at_end =
      std::ranges::any_of(looks, [&](const Look& l) { return high(l.box) > end - kFrameEdge; });
  if (at_start && at_end) return {};
  const Fit of_low = fit(looks, low);
  const Fit of_high = fit(looks, high);
  if (at_start) return of_high;
  if (at_end) return of_low;
  const double deviation =
      fit(looks, [&](const cv::Rect2d& box) { return (low(box) + high(box)) / 2; }).deviation;
  if (of_low.shift * of_high.shift <= 0) return {0, deviation};
  return {std::abs(of_low.shift) < std::abs(of_high.shift) ? of_low.shift : of_high.shift, deviation};
}

}  // namespace

Movement movement(const Looks& looks, double aspect) {
  double size = 0;
  for (const Look& look : looks) size += std::sqrt(look.box.area()) / static_cast<double>(looks.size());
  const Fit across = shift(
      looks, aspect, [](const cv::Rect2d& box) { return box.x; },
      [](const cv::Rect2d& box) { return box.br().x; });
  const Fit down = shift(
      looks, 1, [](const cv::Rect2d& box) { return box.y; },
      [](const cv::Rect2d& box) { return box.br().y; });
  const double distance = std::hypot(across.shift, down.shift);
  return {distance / std::max(size, kNothing),
          std::hypot(across.deviation, down.deviation) / std::max(distance, kNothing),
          fit(looks, [](const cv::Rect2d& box) { return std::sqrt(box.area()); }).deviation /
              std::max(size, kNothing)};
}

}  // namespace lm::host::events::objects
