// The events of a run: passes frames with boxes to all listeners.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "host/detector/regions.h"
#include "host/events/event_tracker.h"
#include "host/events/light.h"
#include "host/events/listener.h"
#include "host/events/run_context.h"

namespace lm::host::events {

class EventWatch {
 public:
  // Throws Failure if an output cannot be opened.
  explicit EventWatch(const RunContext& context);

  // Adds a listener, before the first frame.
  void add(std::unique_ptr<EventListener> listener) { tracker_.add(std::move(listener)); }

  // The next frame, as read from the source, with the boxes that the detector found.
  void frame(const source::Frame& frame, std::int64_t number, Boxes boxes);

  // Ends all events. `why`: a sentence.
  void interrupt(const std::string& why) { tracker_.interrupt(why); }

  void finish(bool stopped);
  void commit() { tracker_.commit(); }

  std::int64_t events() const { return tracker_.events(); }

 private:
  EventWatch(const RunContext& context, const detector::Regions& regions);

  const source::SourceInfo& source_;
  const std::chrono::microseconds gap_;
  LightWatch light_;
  EventTracker tracker_;
  std::chrono::microseconds last_{0};
};

}  // namespace lm::host::events
