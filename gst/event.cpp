#include "gst/event.h"

#include <utility>

namespace lm::gst {

EventTracker::Step EventTracker::frame(const Moment& moment, GstClockTime now, bool boxes,
                                       GstClockTime hold) {
  Step step;
  const bool continues = boxes && !quiet_;
  if (event_ && !continues && now > event_->endedAt && now - event_->endedAt > hold) step.ended = interrupt();
  quiet_ = !boxes;
  if (!boxes) return step;
  const bool begins = !event_;
  if (begins)
    event_ = Event{.number = ++events_, .begin = moment, .end = moment, .beganAt = now, .endedAt = now};
  event_->end = moment;
  event_->endedAt = now;
  ++event_->frames;
  if (begins) step.begun = event_;
  return step;
}

std::optional<Event> EventTracker::interrupt() {
  quiet_ = true;
  return std::exchange(event_, std::nullopt);
}

}  // namespace lm::gst
