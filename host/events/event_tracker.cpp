#include "host/events/event_tracker.h"

#include <algorithm>
#include <cmath>
#include <iterator>

#include "host/events/event_json.h"
#include "host/events/why.h"

namespace lm::host::events {
namespace {

using std::chrono::microseconds;

microseconds of_seconds(double seconds) { return microseconds(std::llround(seconds * 1e6)); }

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

EventTracker::EventTracker(const EventRules& rules, std::vector<std::string> regions)
    : min_event_(of_seconds(rules.min_event)),
      gap_(of_seconds(rules.gap)),
      pre_(of_seconds(rules.pre)),
      post_(of_seconds(rules.post)),
      regions_(std::move(regions)) {}

template <typename Call>
void EventTracker::notify(Call call) {
  for (const auto& listener : listeners_) call(*listener);
}

void EventTracker::observe(const source::Frame& frame, const Observation& seen) {
  notify([&](EventListener& listener) { listener.frame(frame, seen); });
  const bool hidden = std::ranges::find(seen.boxes, true, &Box::by_light) != seen.boxes.end();
  for (Track& track : tracks_) {
    advance(track, seen, boxes_of_kind(seen.boxes, track.kind), hidden && track.kind == EventKind::kMotion);
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
  for (const Box& box : boxes) {
    const cv::Rect2d area = box.area & cv::Rect2d(0, 0, 1, 1);
    event.envelope = event.envelope.empty() ? area : event.envelope | area;
    if (area.area() > event.largest.area()) event.largest = area;
  }
  add_regions(event, boxes);
}

// In the document's order.
void EventTracker::add_regions(Event& event, const Boxes& boxes) const {
  std::vector<std::string> all;
  const auto touched = [&](const std::string& name) {
    const auto holds = [&](const std::vector<std::string>& names) {
      return std::ranges::find(names, name) != names.end();
    };
    return holds(event.regions) || std::ranges::any_of(boxes, holds, &Box::regions);
  };
  std::ranges::copy_if(regions_, std::back_inserter(all), touched);
  event.regions = std::move(all);
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
