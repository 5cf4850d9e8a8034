// Receives events as a video is analysed.
#pragma once

#include "host/events/event.h"
#include "host/source/source.h"

namespace lm::host::events {

// Called in order of time, from one thread. Functions may throw Failure, which ends the run. Motion and a
// lighting change may overlap: these are two events with different ids.
class EventListener {
 public:
  virtual ~EventListener() = default;

  // Every analysed frame, before the events that it begins, changes or ends. Boxes are drawn into the image
  // afterwards: to keep the image, copy it.
  virtual void frame(const source::Frame&, const Observation&) {}

  // Whether the camera delivers pictures: of live sources, before the first frame and when it changes. Events
  // have ended before it does not.
  virtual void source_changed(const source::SourceState&) {}

  // An event has become long enough to count, and one of its objects is confirmed; it began some time ago.
  virtual void begun(const Event&) {}
  // For each later frame that belongs to it.
  virtual void changed(const Event&) {}
  virtual void ended(const Event&) {}
  // An event ended before it was long enough to count, or without a confirmed object; it has no id.
  virtual void dropped(const Event&) {}

  // After the last frame: completes the output.
  virtual void finish() {}
  // Gives complete files their names. Called after all listeners have finished.
  virtual void commit() {}
};

}  // namespace lm::host::events
