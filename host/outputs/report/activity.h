// The share of the frame under boxes over time, in bounded memory.
#pragma once

#include <chrono>
#include <cstddef>
#include <vector>

#include "host/events/event.h"

namespace lm::host::outputs::report {

// The maximum share in each of many spans of equal length. The span length doubles when the video exceeds the
// number of spans.
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
