// Maximum time between the start of an event and its announcement.
#pragma once

#include <chrono>
#include <cmath>
#include <cstdint>

#include "host/events/event_options.h"

namespace lm::host::outputs::report {

inline std::chrono::microseconds lookback(const events::EventRules& rules) {
  return std::chrono::microseconds(std::int64_t((rules.min_event + rules.gap + 1) * 1e6));
}

}  // namespace lm::host::outputs::report
