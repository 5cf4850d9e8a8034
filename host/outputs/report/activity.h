// The share of the frame under boxes over the whole video, in bounded memory.
#pragma once

#include <chrono>
#include <cstddef>
#include <vector>

#include "host/events/event.h"

namespace lm::host::outputs::report {

// Spans of equal length with the largest share in each. The spans become twice as long whenever the video
// turns out to be too long for them.
class Activity {
 public:
  static constexpr std::size_t kMostSpans = 800;

  void add(std::chrono::microseconds time, events::EventKind kind, double share);

  std::chrono::microseconds span() const { return span_; }
  const std::vector<double>& shares(events::EventKind kind) const;

 private:
  void halve();

  std::chrono::microseconds span_{100'000};
  std::vector<double> motion_;
  std::vector<double> light_;
};

}  // namespace lm::host::outputs::report
