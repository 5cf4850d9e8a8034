#include "host/events/event_tracker.h"

#include <algorithm>
#include <cmath>
#include <iterator>

#include "host/base/time_text.h"
#include "host/events/why.h"

namespace lm::host::events {
namespace {

using std::chrono::microseconds;

microseconds of_seconds(double seconds) { return microseconds(std::llround(seconds * 1e6)); }

// "20261121T153012.345Z": without characters that are special in file names.
std::string compact_utc(WallTime time) {
  std::string text = base::utc_text(time);
  std::erase_if(text, [](char c) { return c == '-' || c == ':'; });
  return text;
}

// Live sources count from the start in every run, so their events are distinguished by their start time.
std::string event_id(const Event& event, std::int64_t number) {
  const std::string digits = std::to_string(number);
  const std::string padded = std::string(digits.size() < 4 ? 4 - digits.size() : 0, '0') + digits;
  return event.wall_start ? compact_utc(*event.wall_start) + "-" + padded : padded;
}

// Whether the boxes touch when each is enlarged by a quarter of its sides in all directions.
bool are_close(const cv::Rect2d& a, const cv::Rect2d& b) {
  const double across = (a.width + b.width) / 4;
  const double down = (a.height + b.height) / 4;
  return a.x - across <= b.br().x && b.x - across <= a.br().x && a.y - down <= b.br().y &&
         b.y - down <= a.br().y;
}

// Whoever was seen last there has left the frame: what appears is another object.
bool is_at_border(const cv::Rect2d& area) {
  constexpr double kBorder = 0.02;
  return std::min(area.x, area.y) < kBorder || std::max(area.br().x, area.br().y) > 1 - kBorder;
}

bool has_confirmed(const Boxes& boxes) {
  return std::ranges::find(boxes, true, &Box::confirmed) != boxes.end();
}

std::vector<std::int64_t> objects_in(const Box& box) {
  std::vector<std::int64_t> ids{box.id};
  ids.insert(ids.end(), box.others.begin(), box.others.end());
  return ids;
}

}  // namespace

EventTracker::EventTracker(const EventRules& rules, std::vector<std::string> regions,
                           std::vector<detector::Line> lines)
    : min_event_(of_seconds(rules.min_event)),
      gap_(of_seconds(rules.gap)),
      pre_(of_seconds(rules.pre)),
      post_(of_seconds(rules.post)),
      regions_(std::move(regions)),
      lines_(std::move(lines)) {}

template <typename Call>
void EventTracker::notify(Call call) {
  for (const auto& listener : listeners_) call(*listener);
}

void EventTracker::observe(const source::Frame& frame, const Observation& seen) {
  notify([&](EventListener& listener) { listener.frame(frame, seen); });
  wait(seen);
  distribute(seen);
  for (Track& track : tracks_) {
    if (!track.boxes.empty() || !track.shared.empty()) take(track, seen);
  }
  last_time_ = seen.time;
}

// Whether a box of this frame is known to belong to the event.
bool EventTracker::continues(const Track& track, const Observation& seen) const {
  return std::ranges::any_of(seen.boxes, [&](const Box& box) {
    if (track.event.kind == EventKind::kLight) return box.by_light;
    return !box.by_light && std::ranges::any_of(objects_in(box), [&](std::int64_t object) {
      return track.objects.contains(object);
    });
  });
}

// Counts the time since the previous frame and ends events that have been quiet for too long.
void EventTracker::wait(const Observation& seen) {
  const bool light = std::ranges::find(seen.boxes, true, &Box::by_light) != seen.boxes.end();
  for (Track& track : tracks_) {
    const bool seen_again = continues(track, seen);
    // At low frame rates, consecutive frames with boxes belong together however far apart they are: no frame
    // between them was quiet.
    const bool consecutive = seen_again && track.quiet.count() == 0;
    const bool hidden = light && !seen_again && track.event.kind == EventKind::kMotion;
    (hidden ? track.hidden : track.quiet) += seen.time - last_time_;
    if (!consecutive && track.quiet > gap_) close(track, why_quiet(track.event, gap_, track.hidden));
  }
  std::erase_if(tracks_, [](const Track& track) { return !track.event.ended.empty(); });
}

// Gives each box to its events.
void EventTracker::distribute(const Observation& seen) {
  for (Track& track : tracks_) {
    track.boxes.clear();
    track.shared.clear();
  }
  Boxes boxes = boxes_of_kind(seen.boxes, EventKind::kMotion);
  const Boxes light = boxes_of_kind(seen.boxes, EventKind::kLight);
  boxes.insert(boxes.end(), light.begin(), light.end());
  for (const Box& box : boxes) {
    std::vector<Track*> events;
    for (const std::int64_t object : objects_in(box)) {
      Track& track = event_of(object, box, seen);
      if (!box.by_light) track.objects[object] = {box.area, seen.time};
      if (std::ranges::find(events, &track) == events.end()) events.push_back(&track);
    }
    for (Track* track : events) (events.size() == 1 ? track->boxes : track->shared).push_back(box);
  }
}

EventTracker::Track& EventTracker::event_of(std::int64_t object, const Box& box, const Observation& seen) {
  const EventKind kind = box.by_light ? EventKind::kLight : EventKind::kMotion;
  const auto found = [&](auto belongs) {
    return std::ranges::find_if(
        tracks_, [&](const Track& track) { return track.event.kind == kind && belongs(track); });
  };
  auto place = found([&](const Track& track) { return box.by_light || track.objects.contains(object); });
  if (place == tracks_.end() && !box.by_light) {
    place = found([&](const Track& track) { return is_close(track, box.area, seen.time); });
  }
  return place == tracks_.end() ? open(kind, seen) : *place;
}

bool EventTracker::is_close(const Track& track, const cv::Rect2d& area, microseconds time) const {
  return std::ranges::any_of(track.objects, [&](const auto& object) {
    const LastSeen& last = object.second;
    const bool gone = last.time < last_time_ && is_at_border(last.area);
    return !gone && time - last.time <= gap_ && are_close(last.area, area);
  });
}

EventTracker::Track& EventTracker::open(EventKind kind, const Observation& seen) {
  tracks_.push_back({{}, Trajectories(lines_, gap_)});
  Event& event = tracks_.back().event;
  event.kind = kind;
  event.start = seen.time;
  event.first_frame = seen.frame;
  event.from = std::max(microseconds(0), seen.time - pre_);
  event.wall_start = seen.wall;
  return tracks_.back();
}

void EventTracker::take(Track& track, const Observation& seen) {
  const bool counted = track.counts;
  Event& event = track.event;
  track.quiet = track.hidden = microseconds(0);
  track.confirmed = track.confirmed || has_confirmed(track.boxes) || has_confirmed(track.shared);
  extend(track, seen);
  if (event.started.empty()) {
    const bool alone = std::ranges::none_of(tracks_, [&](const Track& other) {
      return &other != &track && other.event.kind == event.kind && !other.event.started.empty();
    });
    const auto last = last_end_.find(event.kind);
    event.started =
        why_started(event, last == last_end_.end() ? std::nullopt : std::optional(last->second), alone);
  }
  if (counted) return notify([&](EventListener& listener) { listener.changed(event); });
  if (event.end - event.start < min_event_ || !track.confirmed) return;
  track.counts = true;
  event.id = event_id(event, ++events_);
  notify([&](EventListener& listener) { listener.begun(event); });
}

void EventTracker::extend(Track& track, const Observation& seen) const {
  Event& event = track.event;
  event.end = seen.time;
  event.to = seen.time + post_;
  event.last_frame = seen.frame;
  // By the clock at its start: the wall clock may have been set in between.
  if (event.wall_start) event.wall_end = *event.wall_start + (event.end - event.start);
  event.most_boxes = std::max(event.most_boxes, track.boxes.size() + track.shared.size());
  if (event.kind == EventKind::kLight && seen.light) {
    const double before = event.light ? event.light->before : seen.light->before;
    event.light = seen.light;
    event.light->before = before;
  }
  // Boxes with objects of other events are larger than what belongs to this one.
  const Boxes& boxes = track.boxes.empty() ? track.shared : track.boxes;
  const double share = share_under(boxes);
  if (event.frames++ == 0 || (share > event.peak_share && !track.boxes.empty())) {
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
  follow_objects(track, seen.time);
}

// Of an object with several boxes, all are one.
void EventTracker::follow_objects(Track& track, microseconds time) const {
  std::map<std::int64_t, Box> objects;
  for (const Boxes* boxes : {&track.boxes, &track.shared}) {
    for (const Box& box : *boxes) {
      for (const std::int64_t object : objects_in(box)) {
        if (object == 0 || !track.objects.contains(object)) continue;
        Box& whole = objects.try_emplace(object, box).first->second;
        whole.area |= box.area;
        whole.regions.insert(whole.regions.end(), box.regions.begin(), box.regions.end());
      }
    }
  }
  for (const auto& [object, box] : objects) {
    track.trajectories.add(track.event, object, box, time, last_time_);
  }
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
  Event& event = track.event;
  event.ended = why;
  Trajectories::keep_objects(event, min_event_);
  microseconds& last = last_end_.try_emplace(event.kind, event.end).first->second;
  last = std::max(last, event.end);
  if (track.counts) {
    notify([&](EventListener& listener) { listener.ended(event); });
  } else {
    notify([&](EventListener& listener) { listener.dropped(event); });
  }
}

void EventTracker::interrupt(const std::string& why) {
  for (Track& track : tracks_) close(track, why);
  tracks_.clear();
}

void EventTracker::source_changed(const source::SourceState& state) {
  notify([&](EventListener& listener) { listener.source_changed(state); });
}

void EventTracker::finish(const std::string& why) {
  interrupt(why);
  notify([](EventListener& listener) { listener.finish(); });
}

void EventTracker::commit() {
  notify([](EventListener& listener) { listener.commit(); });
}

}  // namespace lm::host::events
