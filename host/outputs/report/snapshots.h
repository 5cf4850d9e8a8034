// --snapshots: the best frame of each event as a JPEG with its boxes drawn.
#pragma once

#include <string>

#include "host/base/outage.h"
#include "host/events/event_options.h"
#include "host/events/listener.h"
#include "host/outputs/report/best_frames.h"

namespace lm::host::outputs::report {

// Each picture is written completely when its event has ended. For live sources one that cannot be written is
// skipped.
class Snapshots : public events::EventListener {
 public:
  // `folder`: created if missing.
  Snapshots(const std::string& folder, const source::SourceInfo& source, const events::EventRules& rules);

  void frame(const source::Frame& frame, const events::Observation& seen) override {
    best_.frame(frame.image, seen);
  }
  void begun(const events::Event& event) override { best_.follow(event); }
  void changed(const events::Event& event) override { best_.follow(event); }
  void ended(const events::Event& event) override;

 private:
  std::string folder_;
  bool live_;
  base::Outage outage_;
  BestFrames best_;
};

}  // namespace lm::host::outputs::report
