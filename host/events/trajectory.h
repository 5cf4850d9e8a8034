// What the objects of an event do: their paths, the regions that they visit, the lines that they cross.
#pragma once

#include <cstdint>
#include <map>
#include <utility>
#include <vector>

#include "host/events/event.h"
#include "host/events/objects/coordinate_filter.h"

namespace lm::host::events {

// The same path with as few points as possible, each of the others at most `tolerance` away from it
// (Ramer 1972, Douglas and Peucker 1973).
std::vector<PathPoint> simplified(const std::vector<PathPoint>& path, double tolerance);

// Fraction of the frame by which a reported path may differ from the measured one.
inline constexpr double kPathTolerance = 0.01;

class Trajectories {
 public:
  static constexpr std::size_t kMostPoints = 200;   // of a path
  static constexpr std::size_t kMostRecords = 200;  // of objects, visits and crossings of an event

  // `gap`: a pause up to this does not end a visit.
  Trajectories(const std::vector<detector::Line>& lines, std::chrono::microseconds gap)
      : lines_(&lines), gap_(gap) {}

  // The object in this box. `before`: time of the previous frame.
  void add(Event& event, std::int64_t object, const Box& box, std::chrono::microseconds time,
           std::chrono::microseconds before);

  // Removes objects that were there for less than `least`, apart from the longest.
  static void keep_objects(Event& event, std::chrono::microseconds least);

 private:
  // The middle of the lower edge of an object's box, without its jitter.
  struct Foot {
    objects::CoordinateFilter x;
    objects::CoordinateFilter y;
    std::chrono::microseconds time;
  };
  cv::Point2d foot(std::int64_t object, const cv::Rect2d& box, std::chrono::microseconds time);
  void visit(Event& event, std::int64_t object, const Box& box, std::chrono::microseconds time,
             std::chrono::microseconds before) const;
  void cross(Event& event, std::int64_t object, cv::Point2d place, std::chrono::microseconds time);

  const std::vector<detector::Line>* lines_;
  std::chrono::microseconds gap_;
  std::map<std::int64_t, Foot> feet_;  // by object
  // By object and line: the last place that was clearly on one side.
  std::map<std::pair<std::int64_t, std::size_t>, cv::Point2d> sides_;
};

}  // namespace lm::host::events
