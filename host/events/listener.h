// Whoever wants to know what happens in a video.
#pragma once

#include "host/events/event.h"
#include "host/source/source.h"

namespace lm::host::events {

// Called in the order of time, from one thread. Functions may throw Failure, which ends the run.
// A change of light and motion may go on at the same time: two events, to be told apart by their ids.
class EventListener {
 public:
  virtual ~EventListener() = default;

  // Every frame that was analysed, before the events that it begins, changes or ends. The boxes are drawn
  // into the image afterwards: who keeps it takes a copy.
  virtual void frame(const source::Frame&, const Observation&) {}

  // An event that is long enough to count; it began some time ago.
  virtual void begun(const Event&) {}
  // At each later frame that belongs to it.
  virtual void changed(const Event&) {}
  virtual void ended(const Event&) {}
  // One that ended before it was long enough to count; it has no id.
  virtual void dropped(const Event&) {}

  // No frame comes any more: completes what is written.
  virtual void finish() {}
  // Gives complete files their names. Called once all listeners have finished.
  virtual void commit() {}
};

}  // namespace lm::host::events
