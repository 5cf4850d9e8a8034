// --clips: one video per event.
#pragma once

#include <chrono>
#include <optional>
#include <string>

#include "host/events/event_options.h"
#include "host/events/listener.h"
#include "host/outputs/report/clip_recorder.h"

namespace lm::host::outputs::report {

// Copied from the source file if possible, otherwise recorded from frames. Each clip gets its name when it is
// complete, soon after its event has ended.
class Clips : public events::EventListener {
 public:
  // `file`: the source as the user named it. `source` must outlive the object.
  Clips(const std::string& folder, const std::string& file, const source::SourceInfo& source,
        const events::EventRules& rules);

  void frame(const source::Frame& frame, const events::Observation& seen) override;
  void begun(const events::Event& event) override;
  void changed(const events::Event& event) override;
  void ended(const events::Event& event) override;
  void finish() override { recorder_.finish(); }
  void commit() override { recorder_.commit(); }

 private:
  void follow_file_time(const source::Frame& frame);
  void spare_source(const events::Event& event) const;
  void copy(const events::Event& event) const;

  std::string folder_;
  std::string file_;
  const char* container_;                            // container to copy to; null if copying is not possible
  std::optional<std::chrono::microseconds> offset_;  // from the run's times to the file's
  std::chrono::microseconds copied_to_;              // later times have another offset
  bool copying_;
  ClipRecorder recorder_;
};

}  // namespace lm::host::outputs::report
