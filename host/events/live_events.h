// The --events file of a live source: each event as it ends.
#pragma once

#include "host/base/journal.h"
#include "host/events/listener.h"
#include "host/events/run_context.h"

namespace lm::host::events {

// JSON lines, or CSV.
class LiveEvents : public EventListener {
 public:
  // Throws Failure (kTrouble) if the file cannot be written.
  explicit LiveEvents(const RunContext& context);

  void frame(const source::Frame&, const Observation&) override { journal_.tick(); }
  void ended(const Event& event) override;
  void finish() override { journal_.finish(); }

 private:
  bool csv_;
  base::Journal journal_;
};

}  // namespace lm::host::events
