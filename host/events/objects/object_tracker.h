// Follows objects through the boxes of consecutive frames.
#pragma once

#include <chrono>
#include <cstdint>
#include <opencv2/core.hpp>
#include <vector>

#include "host/events/objects/track.h"

namespace lm::host::events::objects {

struct TrackedBox {
  std::int64_t id = 0;               // of the largest object in it
  std::vector<std::int64_t> others;  // of further objects in it
};

// SORT (Bewley, Ge, Ott, Ramos, Upcroft: Simple online and realtime tracking, 2016): a Kalman filter predicts
// where each object is, and the Hungarian method assigns the boxes to the predictions. Boxes of motion are
// not those of a classifier, so this one differs:
//   - Boxes merge. Objects in one box are a group (McKenna et al.: Tracking groups of people, 2000), in which
//     each is followed on until it has a box of its own again: it goes on as it moved before, corrected by
//     those edges of the box that are clearly its own.
//   - Boxes split. Until its parts are some way apart, an object's parts have its id.
//   - Boxes grow from a part of the object to all of it and shrink again: one within the other matches.
//   - Boxes vanish while the object stands still. It is remembered for as long as it had been seen, at most
//   for
//     `memory`, and loses its speed meanwhile.
// All limits are in seconds or relative to the size of the object, so they fit every frame rate and distance.
class ObjectTracker {
 public:
  // `aspect`: the frame's width by its height.
  ObjectTracker(double aspect, std::chrono::microseconds memory) : aspect_(aspect), memory_(memory) {}

  // Boxes in fractions of the frame; those without an area get the id 0. `time`: later than that of the
  // previous frame. `hidden`: something covers the picture, so the time does not count as time without boxes.
  std::vector<TrackedBox> update(std::chrono::microseconds time, const std::vector<cv::Rect2d>& boxes,
                                 bool hidden = false);

  // Forgets all objects. Their ids are not used again.
  void forget();

 private:
  using Boxes = std::vector<cv::Rect2d>;
  using Indices = std::vector<std::size_t>;  // of tracks

  void assign_boxes(const Boxes& boxes);
  void find_merged(const Boxes& boxes);
  void settle(Indices& members, const cv::Rect2d& box);
  void share(const Indices& members, const cv::Rect2d& box);
  void start(Indices& members, const cv::Rect2d& box);
  void lose(Track& track, std::chrono::microseconds passed);
  void release(Track& part);
  void become_object(Track& part);
  bool left_frame(const Track& track) const;
  Track* find(std::int64_t id);
  TrackedBox named(const Indices& members) const;

  double aspect_;
  std::chrono::microseconds memory_;
  std::chrono::microseconds time_{0};
  std::vector<Track> tracks_;     // in the order of their first frames
  Boxes predicted_;               // of each track
  std::vector<Indices> members_;  // of each box
  std::vector<bool> assigned_;    // each track
  std::int64_t next_id_ = 1;
};

}  // namespace lm::host::events::objects
