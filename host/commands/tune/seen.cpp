#include "host/commands/tune/seen.h"

#include <algorithm>

namespace lm::host::commands::tune {
namespace {

bool holds(const events::TimeSpan& span, std::int64_t time) {
  return time >= span.from.count() && time < span.to.count();
}

bool touches(const Happening& event, const events::TimeSpan& span) {
  return event.start < span.to.count() && event.end >= span.from.count();
}

std::size_t events_touching(const Seen& seen, const Spans& spans) {
  return static_cast<std::size_t>(std::ranges::count_if(seen.happenings, [&](const Happening& event) {
    return std::ranges::any_of(spans, [&](const events::TimeSpan& span) { return touches(event, span); });
  }));
}

bool found_in(const Seen& seen, const events::TimeSpan& span) {
  const bool event = std::ranges::any_of(seen.happenings, [&](const Happening& happening) {
    return happening.kind == events::EventKind::kMotion && touches(happening, span);
  });
  return event && std::ranges::any_of(seen.looks, [&](const Look& look) {
           return look.has_boxes() && holds(span, look.time);
         });
}

bool matches(const cv::Rect2d& a, const cv::Rect2d& b) {
  const double both = (a & b).area();
  return 2 * both >= a.area() + b.area() - both;
}

std::int64_t kept_in(const Seen& seen, const std::vector<MovingBox>& moving) {
  return std::ranges::count_if(moving, [&](const MovingBox& wanted) {
    return std::ranges::any_of(seen.looks.at(wanted.look).boxes,
                               [&](const MotionBox& box) { return matches(box.area, wanted.area); });
  });
}

}  // namespace

bool contains(const Spans& spans, std::int64_t time) {
  return std::ranges::any_of(spans, [time](const events::TimeSpan& span) { return holds(span, time); });
}

Figures figures_of(const Seen& seen, const Marks& marks, const std::vector<MovingBox>& moving) {
  Figures figures;
  for (const Look& look : seen.looks) {
    if (!look.has_boxes()) continue;
    ++figures.frames;
    if (contains(marks.quiet, look.time)) ++figures.quiet_frames;
    if (contains(marks.motion, look.time)) ++figures.motion_frames;
  }
  figures.kept = kept_in(seen, moving);
  figures.events = seen.happenings.size();
  figures.quiet_events = events_touching(seen, marks.quiet);
  figures.motion_events = events_touching(seen, marks.motion);
  figures.found = static_cast<std::size_t>(std::ranges::count_if(
      marks.motion, [&](const events::TimeSpan& span) { return found_in(seen, span); }));
  return figures;
}

}  // namespace lm::host::commands::tune
