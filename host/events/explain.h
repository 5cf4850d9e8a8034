// --explain: why there were, or were no, boxes and events in a span of time.
#pragma once

#include <cstdio>
#include <string>

#include "host/events/event_options.h"
#include "host/events/hidden_change.h"
#include "host/events/listener.h"
#include "host/events/run_context.h"

namespace lm::host::events {

// Writes to standard error after the run, so that result lines and progress are not interrupted.
class Explainer : public EventListener {
 public:
  explicit Explainer(const RunContext& context, std::FILE* out = stderr);

  void frame(const source::Frame& frame, const Observation& seen) override;
  void ended(const Event& event) override;
  void dropped(const Event& event) override;
  void commit() override;

 private:
  std::string frame_line(const Observation& seen) const;
  bool in_span(const Event& event) const;
  std::string settings() const;

  TimeSpan span_;
  EventRules rules_;
  std::string document_;
  HiddenChange hidden_;
  std::FILE* out_;
  std::string frames_;  // lines
  std::string events_;  // lines
  int frames_seen_ = 0;
  int frames_without_boxes_ = 0;
  std::int64_t clutter_ = 0;  // boxes
  int boxes_by_light_ = 0;
};

// The minimum box size in fractions of the frame, as the detector reads it from the document.
cv::Size2d smallest_box(const std::string& document);

}  // namespace lm::host::events
