// The events of a run: passes frames with boxes to all listeners.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "host/detector/regions.h"
#include "host/events/event_tracker.h"
#include "host/events/light.h"
#include "host/events/listener.h"
#include "host/events/objects/confirmation.h"
#include "host/events/objects/object_tracker.h"
#include "host/events/run_context.h"

namespace lm::host::events {

class EventWatch {
 public:
  // Throws Failure if an output cannot be opened.
  explicit EventWatch(const RunContext& context);

  // Adds a listener, before the first frame.
  void add(std::unique_ptr<EventListener> listener) { tracker_.add(std::move(listener)); }

  // The next frame, as read from the source, with the boxes that the detector found. Returns them with their
  // objects, without clutter.
  Boxes frame(const source::Frame& frame, std::int64_t number, Boxes boxes);

  // Of a live source, before the first frame and whenever its state changes.
  void source_changed(const source::SourceState& state);

  // Ends all events. `why`: a sentence.
  void interrupt(const std::string& why);

  void finish(bool stopped);
  void commit() { tracker_.commit(); }

  std::int64_t events() const { return tracker_.events(); }
  // Number of boxes left out so far.
  std::int64_t clutter() const { return clutter_; }

 private:
  EventWatch(const RunContext& context, const detector::Regions& regions);
  void name_objects(Observation& seen);
  // Those whose standing is clutter.
  void leave_out(Observation& seen, const std::vector<Box*>& boxes,
                 const std::vector<objects::Standing>& standings);

  const source::SourceInfo& source_;
  const std::chrono::microseconds gap_;
  LightWatch light_;
  objects::ObjectTracker objects_;
  std::optional<objects::Confirmation> confirmation_;
  EventTracker tracker_;
  std::chrono::microseconds last_{0};
  std::int64_t clutter_ = 0;
};

}  // namespace lm::host::events
