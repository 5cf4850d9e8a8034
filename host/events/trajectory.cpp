#include "host/events/trajectory.h"

#include <algorithm>
#include <cmath>

namespace lm::host::events {
namespace {

using std::chrono::microseconds;

constexpr double kLeastMove = 0.005;  // smaller movements are no points of a path
constexpr double kClear = 0.01;       // distance from a line at which the side is certain

// In heights of the box. Its lower edge is up to half of them too high when legs are not found.
constexpr double kJitter = 0.25;
constexpr double kAcceleration = 0.5;
constexpr double kSpeed = 3;

double squared(double value) { return value * value; }

double distance_to_segment(cv::Point2d point, cv::Point2d from, cv::Point2d to) {
  const cv::Point2d along = to - from;
  const double length = along.dot(along);
  const double part = length > 0 ? std::clamp((point - from).dot(along) / length, 0.0, 1.0) : 0;
  return cv::norm(point - from - part * along);
}

// Of the straight line through both points; positive on the right, because y goes down.
double side_of(cv::Point2d point, cv::Point2d from, cv::Point2d to) {
  return (to - from).cross(point - from) / cv::norm(to - from);
}

// Marks the points to keep between two that are kept.
void keep_far_points(const std::vector<PathPoint>& path, std::size_t first, std::size_t last,
                     double tolerance, std::vector<bool>& kept) {
  double most = tolerance;
  std::size_t farthest = first;
  for (std::size_t i = first + 1; i < last; ++i) {
    const double distance = distance_to_segment(path[i].place, path[first].place, path[last].place);
    if (distance <= most) continue;
    most = distance;
    farthest = i;
  }
  if (farthest == first) return;
  kept[farthest] = true;
  keep_far_points(path, first, farthest, tolerance, kept);
  keep_far_points(path, farthest, last, tolerance, kept);
}

void append(std::vector<PathPoint>& path, microseconds time, cv::Point2d place) {
  // The last point follows the object until it has moved on.
  if (path.size() > 1 && cv::norm(path.back().place - path[path.size() - 2].place) < kLeastMove)
    path.pop_back();
  path.push_back({time, place});
  for (double tolerance = kPathTolerance; path.size() > Trajectories::kMostPoints; tolerance *= 2) {
    path = simplified(path, tolerance);
  }
}

EventObject* record_of(Event& event, std::int64_t id, microseconds time) {
  const auto place = std::ranges::lower_bound(event.objects, id, {}, &EventObject::id);
  if (place != event.objects.end() && place->id == id) return &*place;
  if (event.objects.size() >= Trajectories::kMostRecords) return nullptr;
  return &*event.objects.insert(place, {id, time, time, {}});
}

}  // namespace

std::vector<PathPoint> simplified(const std::vector<PathPoint>& path, double tolerance) {
  if (path.size() < 3) return path;
  std::vector<bool> kept(path.size(), false);
  kept.front() = kept.back() = true;
  keep_far_points(path, 0, path.size() - 1, tolerance, kept);
  std::vector<PathPoint> points;
  for (std::size_t i = 0; i < path.size(); ++i) {
    if (kept[i]) points.push_back(path[i]);
  }
  return points;
}

void Trajectories::add(Event& event, std::int64_t object, const Box& box, microseconds time,
                       microseconds before) {
  EventObject* record = record_of(event, object, time);
  if (record == nullptr) return;
  record->end = time;
  if (box.others.empty() || record->path.empty()) {
    const cv::Point2d place = foot(object, box.area, time);
    append(record->path, time, place);
    cross(event, object, place, time);
  }
  visit(event, object, box, time, before);
}

cv::Point2d Trajectories::foot(std::int64_t object, const cv::Rect2d& box, microseconds time) {
  const double jitter = squared(kJitter * box.height);
  const cv::Point2d place(box.x + box.width / 2, box.y + box.height);
  const auto filter = [&](double value) {
    return objects::CoordinateFilter(value, jitter, squared(kSpeed * box.height));
  };
  const auto [known, is_new] = feet_.try_emplace(object, Foot{filter(place.x), filter(place.y), time});
  if (is_new) return place;
  Foot& foot = known->second;
  const double seconds = std::chrono::duration<double>(time - foot.time).count();
  foot.time = time;
  foot.x.predict(seconds, squared(kAcceleration * box.height));
  foot.y.predict(seconds, squared(kAcceleration * box.height));
  foot.x.correct(place.x, jitter);
  foot.y.correct(place.y, jitter);
  return {std::clamp(foot.x.value(), 0.0, 1.0), std::clamp(foot.y.value(), 0.0, 1.0)};
}

// A box with several objects does not show which of them touches a region: it only continues visits.
void Trajectories::visit(Event& event, std::int64_t object, const Box& box, microseconds time,
                         microseconds before) const {
  for (const std::string& region : box.regions) {
    const auto last = std::find_if(event.visits.rbegin(), event.visits.rend(), [&](const Visit& visit) {
      return visit.object == object && visit.region == region;
    });
    if (last != event.visits.rend() && (last->end == before || time - last->end <= gap_)) {
      last->end = time;
    } else if (box.others.empty() && event.visits.size() < kMostRecords) {
      event.visits.push_back({region, object, time, time});
    }
  }
}

void Trajectories::cross(Event& event, std::int64_t object, cv::Point2d place, microseconds time) {
  for (std::size_t i = 0; i < lines_->size(); ++i) {
    const detector::Line& line = (*lines_)[i];
    const double side = side_of(place, line.from, line.to);
    if (std::abs(side) < kClear) continue;
    const auto [last, is_new] = sides_.try_emplace({object, i}, place);
    const cv::Point2d before = std::exchange(last->second, place);
    const bool changed = (side > 0) != (side_of(before, line.from, line.to) > 0);
    // Both ends of the line on different sides of the way: the way crosses it, not its continuation.
    const bool within = side_of(line.from, before, place) * side_of(line.to, before, place) <= 0;
    const detector::Side to = side > 0 ? detector::Side::kRight : detector::Side::kLeft;
    if (is_new || !changed || !within || line.only.value_or(to) != to) continue;
    if (event.crossings.size() < kMostRecords) event.crossings.push_back({line.name, object, time, to});
  }
}

void Trajectories::keep_objects(Event& event, microseconds least) {
  const auto length = [](const EventObject& object) { return object.end - object.start; };
  if (event.objects.empty()) return;
  const microseconds longest = length(*std::ranges::max_element(event.objects, {}, length));
  std::erase_if(event.objects,
                [&](const EventObject& object) { return length(object) < std::min(least, longest); });
  const auto is_gone = [&](const auto& record) {
    return std::ranges::find(event.objects, record.object, &EventObject::id) == event.objects.end();
  };
  std::erase_if(event.visits, is_gone);
  std::erase_if(event.crossings, is_gone);
}

}  // namespace lm::host::events
