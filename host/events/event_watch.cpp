#include "host/events/event_watch.h"

#include <cmath>

namespace lm::host::events {

EventWatch::EventWatch(const RunContext& context)
    : EventWatch(context, detector::Regions(context.document)) {}

EventWatch::EventWatch(const RunContext& context, const detector::Regions& regions)
    : source_(context.source),
      gap_(std::llround(context.options.rules.gap * 1e6)),
      light_(regions),
      tracker_(context.options.rules, regions.names()) {}

void EventWatch::frame(const source::Frame& frame, std::int64_t number, Boxes boxes) {
  if (frame.anew || (!frame.note.empty() && frame.time - last_ > gap_)) {
    light_.forget();
    tracker_.interrupt("The source was interrupted: " + frame.note + ".");
  }
  last_ = frame.time;
  Observation seen;
  seen.frame = number;
  seen.time = frame.time;
  seen.boxes = std::move(boxes);
  if (source_.start) seen.wall = *source_.start + frame.time;
  light_.look(frame.image, seen);
  tracker_.observe(frame, seen);
}

void EventWatch::finish(bool stopped) {
  tracker_.finish(stopped ? "The program was stopped." : "The video ended.");
}

}  // namespace lm::host::events
