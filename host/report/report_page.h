// --report: what happened, where and when, on one page.
#pragma once

#include <chrono>
#include <string>

#include "host/events/event_options.h"
#include "host/events/listener.h"
#include "host/pending_file.h"
#include "host/report/best_frames.h"
#include "host/report/heat_map.h"
#include "host/report/page.h"
#include "host/report/quiet_frame.h"

namespace lm::host {

// The first events in the order of their ends have a picture, and some more a place on the page; of the rest
// only the number is kept.
class ReportPage : public EventListener {
 public:
  static constexpr std::size_t kMostPictures = 300;
  static constexpr std::size_t kMostEvents = 5000;

  // `source` outlives the object.
  ReportPage(const std::string& file, const SourceInfo& source, const std::string& document,
             const EventRules& rules);

  void frame(const Frame& frame, const Observation& seen) override;
  void begun(const Event& event) override { best_.follow(event); }
  void changed(const Event& event) override { best_.follow(event); }
  void ended(const Event& event) override;
  void finish() override;
  void commit() override { pending_.commit(); }

 private:
  PendingFile pending_;
  const SourceInfo& source_;
  HeatMap heat_;
  QuietFrame ground_;
  BestFrames best_;
  PageData data_;
  std::chrono::steady_clock::time_point begin_ = std::chrono::steady_clock::now();
  std::chrono::microseconds previous_{0};  // time of the frame before the last
};

}  // namespace lm::host
