// The --events file of a recording: all its events, as one JSON document, JSON lines or CSV.
#pragma once

#include <chrono>
#include <memory>
#include <string>
#include <vector>

#include "host/base/pending_file.h"
#include "host/events/listener.h"
#include "host/events/run_context.h"

namespace lm::host::events {

class EventsFile : public EventListener {
 public:
  // Throws Failure (kTrouble) if the file cannot be written.
  explicit EventsFile(const RunContext& context);

  void frame(const source::Frame& frame, const Observation& seen) override;
  void ended(const Event& event) override { events_.push_back(event); }
  void finish() override;
  void commit() override { pending_.commit(); }

 private:
  std::string json() const;
  std::string csv() const;
  std::string lines() const;

  const EventRules rules_;
  const source::SourceInfo& source_;
  base::PendingFile pending_;
  std::vector<Event> events_;
  std::int64_t frames_ = 0;
  std::chrono::microseconds last_{0};
};

}  // namespace lm::host::events
