// Tells objects from clutter: rain, snow, leaves, waves, screens, noise.
#pragma once

#include <chrono>
#include <cstdint>
#include <deque>
#include <map>
#include <opencv2/core.hpp>
#include <optional>
#include <vector>

#include "host/events/objects/clutter_map.h"
#include "host/events/objects/movement.h"
#include "host/events/objects/object_tracker.h"

namespace lm::host::events::objects {

enum class Standing {
  kClutter,    // or not to be told from it
  kLikely,     // appeared where there is no clutter
  kConfirmed,  // an object
};

// An object moves, steadily and by a part of its size; clutter comes and goes, flutters in its place, or
// jumps.
//  - Where there was no clutter of late, what appears is likely an object, and confirmed when it has moved or
//    has stayed for some time.
//  - Where there was, it must move farther and more steadily, and counts only while it does, until it comes
//    to a place without clutter. In rain and snow it must be clearly larger than most of what falls.
//  - In the first seconds nothing is known about the scene: only what moves counts, and what keeps still is
//    taken for clutter.
//  - What is confirmed stays so, however still it is. What vanished, or stayed in its place among clutter,
//    without being confirmed was clutter, which ClutterMap remembers.
class Confirmation {
 public:
  // `aspect`: the frame's width by its height. `memory`: how long the tracker remembers an object.
  Confirmation(double aspect, std::chrono::microseconds memory)
      : aspect_(aspect), memory_(memory), map_(aspect) {}

  // The standing of each box. `boxes`, `time`, `hidden`: as passed to the tracker; `objects`: what it
  // returned.
  std::vector<Standing> update(std::chrono::microseconds time, const std::vector<cv::Rect2d>& boxes,
                               const std::vector<TrackedBox>& objects, bool hidden = false);

  // The tracker has forgotten all objects, and the scene may be another one.
  void forget();

 private:
  struct Record {
    std::deque<Look> looks{};        // of late
    std::deque<Look> unaccounted{};  // not in the map yet
    std::chrono::microseconds seen{0};
    std::optional<std::chrono::microseconds> likely_since{};
    Standing standing = Standing::kClutter;
    bool moved = false;  // where there is no clutter: it stays confirmed
  };

  void look(Record& record, const cv::Rect2d& box, double seconds);
  void judge(Record& record);
  bool has_moved(const Record& record, bool expected) const;
  void account(Record& record, ClutterMap::Kind kind);
  Standing standing(const TrackedBox& objects) const;

  double aspect_;
  std::chrono::microseconds memory_;
  ClutterMap map_;
  std::map<std::int64_t, Record> records_;  // by id
  std::chrono::microseconds begin_{-1};     // of the scene
  std::chrono::microseconds time_{0};
};

}  // namespace lm::host::events::objects
