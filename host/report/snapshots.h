// --snapshots: the best frame of each event as a picture with its boxes.
#pragma once

#include <string>

#include "host/events/event_options.h"
#include "host/events/listener.h"
#include "host/report/best_frames.h"

namespace lm::host {

// Each picture is complete, and has its name, as soon as its event has ended.
class Snapshots : public EventListener {
 public:
  // `folder`: made when it is missing.
  Snapshots(const std::string& folder, const SourceInfo& source, const EventRules& rules);

  void frame(const Frame& frame, const Observation& seen) override { best_.frame(frame.image, seen); }
  void begun(const Event& event) override { best_.follow(event); }
  void changed(const Event& event) override { best_.follow(event); }
  void ended(const Event& event) override;

 private:
  std::string folder_;
  BestFrames best_;
};

}  // namespace lm::host
