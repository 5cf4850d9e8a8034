#include "host/events/box.h"

#include <algorithm>
#include <iterator>

namespace lm::host::events {

Boxes boxes_of_kind(const Boxes& boxes, EventKind kind) {
  Boxes some;
  std::ranges::copy_if(
      boxes, std::back_inserter(some), [=](bool light) { return light == (kind == EventKind::kLight); },
      &Box::by_light);
  return some;
}

double share_under(const Boxes& boxes) {
  const cv::Rect2d frame(0, 0, 1, 1);
  std::vector<double> edges;
  std::vector<cv::Rect2d> inside;
  for (const Box& box : boxes) {
    const cv::Rect2d part = box.area & frame;
    if (part.empty()) continue;
    inside.push_back(part);
    edges.insert(edges.end(), {part.x, part.x + part.width});
  }
  std::sort(edges.begin(), edges.end());
  std::sort(inside.begin(), inside.end(), [](const auto& a, const auto& b) { return a.y < b.y; });
  double area = 0;
  for (std::size_t i = 1; i < edges.size(); ++i) {  // between two edges nothing begins or ends
    const double middle = (edges[i - 1] + edges[i]) / 2;
    double covered = 0;
    double bottom = 0;
    for (const cv::Rect2d& box : inside) {
      if (middle < box.x || middle > box.x + box.width) continue;
      covered += std::max(0.0, box.y + box.height - std::max(bottom, box.y));
      bottom = std::max(bottom, box.y + box.height);
    }
    area += covered * (edges[i] - edges[i - 1]);
  }
  return area;
}

}  // namespace lm::host::events
