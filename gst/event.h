// Events: spans of time with boxes, as the program's events without a minimum length.
#pragma once

#include <gst/gst.h>

#include <optional>

namespace lm::gst {

// The time of a frame. Members may be GST_CLOCK_TIME_NONE.
struct Moment {
  GstClockTime timestamp = GST_CLOCK_TIME_NONE;
  GstClockTime streamTime = GST_CLOCK_TIME_NONE;
  GstClockTime runningTime = GST_CLOCK_TIME_NONE;
};

struct Event {
  guint64 number = 0;  // within the element; the first is 1
  Moment begin;
  Moment end;                // of the last frame with boxes so far
  GstClockTime beganAt = 0;  // on the clock that is passed to frame()
  GstClockTime endedAt = 0;
  guint64 frames = 0;  // with boxes
};

class EventTracker {
 public:
  struct Step {
    std::optional<Event> ended;
    std::optional<Event> begun;
  };

  // The next analysed frame. An event ends after more than `hold` without boxes; consecutive frames with
  // boxes belong together however far apart they are. `now` never goes back while an event lasts.
  Step frame(const Moment& moment, GstClockTime now, bool boxes, GstClockTime hold);

  // Ends the event that is in progress, if any.
  std::optional<Event> interrupt();

 private:
  std::optional<Event> event_;
  bool quiet_ = true;  // the last frame had no boxes
  guint64 events_ = 0;
};

}  // namespace lm::gst
