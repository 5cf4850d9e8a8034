#include "host/events/event_tracker.h"

#include <algorithm>
#include <cmath>

#include "host/events/event_json.h"
#include "host/events/why.h"

namespace lm::host::events {
namespace {

using std::chrono::microseconds;
using Boxes = std::vector<cv::Rect2d>;

microseconds of_seconds(double seconds) { return microseconds(std::llround(seconds * 1e6)); }

Boxes boxes_of_kind(const Observation& seen, EventKind kind) {
  Boxes boxes;
  for (std::size_t i = 0; i < seen.boxes.size(); ++i) {
    const bool light = i < seen.by_light.size() && seen.by_light[i];
    if (light == (kind == EventKind::kLight)) boxes.push_back(seen.boxes[i]);
  }
  return boxes;
}

// "20261121T153012.345Z": without characters that are special in file names.
std::string compact_utc(WallTime time) {
  std::string text = utc_text(time);
  std::erase_if(text, [](char c) { return c == '-' || c == ':'; });
  return text;
}

// Live sources count from the start in every run, so their events are distinguished by their start time.
std::string event_id(const Event& event, std::int64_t number) {
  const std::string digits = std::to_string(number);
  const std::string padded = std::string(digits.size() < 4 ? 4 - digits.size() : 0, '0') + digits;
  return event.wall_start ? compact_utc(*event.wall_start) + "-" + padded : padded;
}

}  // namespace

double share_under(const Boxes& boxes) {
  const cv::Rect2d frame(0, 0, 1, 1);
  std::vector<double> edges;
  std::vector<cv::Rect2d> inside;
  for (const cv::Rect2d& box : boxes) {
    const cv::Rect2d part = box & frame;
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

EventTracker::EventTracker(const EventRules& rules, Touch touch)
    : min_event_(of_seconds(rules.min_event)),
      gap_(of_seconds(rules.gap)),
      pre_(of_seconds(rules.pre)),
      post_(of_seconds(rules.post)),
      touch_(std::move(touch)) {}

template <typename Call>
void EventTracker::notify(Call call) {
  for (const auto& listener : listeners_) call(*listener);
}

void EventTracker::observe(const source::Frame& frame, const Observation& seen) {
  notify([&](EventListener& listener) { listener.frame(frame, seen); });
  const bool hidden = std::find(seen.by_light.begin(), seen.by_light.end(), true) != seen.by_light.end();
  for (Track& track : tracks_) {
    advance(track, seen, boxes_of_kind(seen, track.kind), hidden && track.kind == EventKind::kMotion);
  }
  last_time_ = seen.time;
}

void EventTracker::advance(Track& track, const Observation& seen, Boxes boxes, bool hidden) {
  if (track.event) {
    // At low frame rates, consecutive frames with boxes belong together however far apart they are: no frame
    // between them was quiet.
    const bool continues = !boxes.empty() && track.quiet.count() == 0;
    (hidden && boxes.empty() ? track.hidden : track.quiet) += seen.time - *last_time_;
    if (!continues && track.quiet > gap_) close(track, why_quiet(*track.event, gap_, track.hidden));
  }
  if (boxes.empty()) return;
  const bool counted = track.counts;
  track.quiet = track.hidden = microseconds(0);
  if (!track.event) {
    open(track, seen, boxes);
  } else {
    extend(*track.event, seen, boxes);
  }
  Event& event = *track.event;
  if (counted && track.counts) return notify([&](EventListener& listener) { listener.changed(event); });
  if (event.end - event.start < min_event_) return;
  track.counts = true;
  event.id = event_id(event, ++events_);
  notify([&](EventListener& listener) { listener.begun(event); });
}

void EventTracker::open(Track& track, const Observation& seen, const Boxes& boxes) {
  Event event;
  event.kind = track.kind;
  event.start = seen.time;
  event.first_frame = seen.frame;
  event.from = std::max(microseconds(0), seen.time - pre_);
  event.wall_start = seen.wall;
  extend(event, seen, boxes);
  event.started = why_started(event, track.last_end);
  track.event = std::move(event);
}

void EventTracker::extend(Event& event, const Observation& seen, const Boxes& boxes) const {
  event.end = seen.time;
  event.to = seen.time + post_;
  event.last_frame = seen.frame;
  event.wall_end = seen.wall;
  event.most_boxes = std::max(event.most_boxes, boxes.size());
  if (event.kind == EventKind::kLight && seen.light) {
    const double before = event.light ? event.light->before : seen.light->before;
    event.light = seen.light;
    event.light->before = before;
  }
  const double share = share_under(boxes);
  if (event.frames++ == 0 || share > event.peak_share) {
    event.peak = seen.time;
    event.peak_frame = seen.frame;
    event.peak_share = share;
  }
  for (const cv::Rect2d& whole : boxes) {
    const cv::Rect2d box = whole & cv::Rect2d(0, 0, 1, 1);
    event.envelope = event.envelope.empty() ? box : event.envelope | box;
    if (box.area() > event.largest.area()) event.largest = box;
    if (touch_) touch_(box, event.regions);
  }
}

void EventTracker::close(Track& track, const std::string& why) {
  Event event = std::move(*track.event);
  track.event.reset();
  track.last_end = event.end;
  event.ended = why;
  if (track.counts) {
    notify([&](EventListener& listener) { listener.ended(event); });
  } else {
    notify([&](EventListener& listener) { listener.dropped(event); });
  }
  track.counts = false;
  track.quiet = track.hidden = microseconds(0);
}

void EventTracker::interrupt(const std::string& why) {
  for (Track& track : tracks_) {
    if (track.event) close(track, why);
  }
}

void EventTracker::finish(const std::string& why) {
  interrupt(why);
  notify([](EventListener& listener) { listener.finish(); });
}

void EventTracker::commit() {
  notify([](EventListener& listener) { listener.commit(); });
}

}  // namespace lm::host::events
