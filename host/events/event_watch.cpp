#include "host/events/event_watch.h"

#include <algorithm>
#include <cmath>

#include "host/detector/adapt.h"

namespace lm::host::events {
namespace {

using namespace std::chrono_literals;

constexpr std::chrono::microseconds kMemory = 5s;  // of objects that stand still

std::chrono::microseconds memory_of(const EventOptions& options) {
  return std::max<std::chrono::microseconds>(
      kMemory, std::chrono::microseconds(std::llround(options.rules.gap * 1e6)));
}

// As seen: pixels need not be square.
double aspect_of(const source::SourceInfo& source) {
  return static_cast<double>(source.size.width) * source.pixel_aspect.width /
         (static_cast<double>(source.size.height) * source.pixel_aspect.height);
}

}  // namespace

EventWatch::EventWatch(const RunContext& context)
    : EventWatch(context, detector::Regions(context.document)) {}

EventWatch::EventWatch(const RunContext& context, const detector::Regions& regions)
    : source_(context.source),
      gap_(std::llround(context.options.rules.gap * 1e6)),
      light_(regions),
      objects_(aspect_of(context.source), memory_of(context.options)),
      tracker_(context.options.rules, regions.names(), detector::lines_of(context.document)) {
  if (detector::adapts(context.document))
    confirmation_.emplace(aspect_of(context.source), memory_of(context.options));
}

Boxes EventWatch::frame(const source::Frame& frame, std::int64_t number, Boxes boxes) {
  if (frame.anew || (!frame.note.empty() && frame.time - last_ > gap_)) {
    light_.forget();
    interrupt("The source was interrupted: " + frame.note + ".");
  }
  last_ = frame.time;
  Observation seen;
  seen.frame = number;
  seen.time = frame.time;
  seen.boxes = std::move(boxes);
  if (source_.start) seen.wall = *source_.start + frame.time;
  light_.look(frame.image, seen);
  name_objects(seen);
  tracker_.observe(frame, seen);
  return std::move(seen.boxes);
}

void EventWatch::name_objects(Observation& seen) {
  std::vector<Box*> moving;
  std::vector<cv::Rect2d> areas;
  for (Box& box : seen.boxes) {
    if (box.by_light) continue;
    moving.push_back(&box);
    areas.push_back(box.area);
  }
  const bool hidden = moving.size() < seen.boxes.size();
  const auto objects = objects_.update(seen.time, areas, hidden);
  for (std::size_t i = 0; i < moving.size(); ++i) {
    moving[i]->id = objects[i].id;
    moving[i]->others = objects[i].others;
  }
  if (confirmation_) leave_out(seen, moving, confirmation_->update(seen.time, areas, objects, hidden));
}

void EventWatch::leave_out(Observation& seen, const std::vector<Box*>& boxes,
                           const std::vector<objects::Standing>& standings) {
  std::vector<bool> clutter(seen.boxes.size());
  for (std::size_t i = 0; i < boxes.size(); ++i) {
    boxes[i]->confirmed = standings[i] == objects::Standing::kConfirmed;
    clutter[static_cast<std::size_t>(boxes[i] - seen.boxes.data())] =
        standings[i] == objects::Standing::kClutter;
  }
  Boxes kept;
  for (std::size_t i = 0; i < seen.boxes.size(); ++i) {
    if (!clutter[i]) kept.push_back(std::move(seen.boxes[i]));
  }
  seen.clutter = static_cast<std::int64_t>(seen.boxes.size() - kept.size());
  clutter_ += seen.clutter;
  seen.boxes = std::move(kept);
}

void EventWatch::source_changed(const source::SourceState& state) {
  switch (state.camera) {
    case source::CameraState::kConnected:
      break;
    case source::CameraState::kLost:
    case source::CameraState::kReconnecting:
      interrupt("The connection to the camera was lost: " + state.reason + ".");
      break;
    case source::CameraState::kFrozen:
      interrupt("The picture froze: " + state.reason + ".");
      break;
  }
  tracker_.source_changed(state);
}

void EventWatch::interrupt(const std::string& why) {
  objects_.forget();
  if (confirmation_) confirmation_->forget();
  tracker_.interrupt(why);
}

void EventWatch::finish(bool stopped) {
  tracker_.finish(stopped ? "The program was stopped." : "The video ended.");
}

}  // namespace lm::host::events
