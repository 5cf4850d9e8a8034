// --report: what happened, where and when, on one page.
#pragma once

#include <chrono>
#include <string>

#include "host/base/pending_file.h"
#include "host/events/event_options.h"
#include "host/events/listener.h"
#include "host/outputs/report/best_frames.h"
#include "host/outputs/report/heat_map.h"
#include "host/outputs/report/page.h"
#include "host/outputs/report/quiet_frame.h"

namespace lm::host::outputs::report {

// Limits the page's size: pictures for the first events by end time, then events without pictures, then only
// a count.
class ReportPage : public events::EventListener {
 public:
  static constexpr std::size_t kMostPictures = 300;
  static constexpr std::size_t kMostEvents = 5000;

  // `source` must outlive the object.
  ReportPage(const std::string& file, const source::SourceInfo& source, const std::string& document,
             const events::EventRules& rules);

  void frame(const source::Frame& frame, const events::Observation& seen) override;
  void begun(const events::Event& event) override { best_.follow(event); }
  void changed(const events::Event& event) override { best_.follow(event); }
  void ended(const events::Event& event) override;
  void finish() override;
  void commit() override { pending_.commit(); }

 private:
  base::PendingFile pending_;
  const source::SourceInfo& source_;
  HeatMap heat_;
  QuietFrame ground_;
  BestFrames best_;
  PageData data_;
  std::chrono::steady_clock::time_point begin_ = std::chrono::steady_clock::now();
  std::chrono::microseconds previous_{0};  // time of the previous frame
};

}  // namespace lm::host::outputs::report
