// Why events start and end, in sentences. The same text in every locale.
#pragma once

#include <chrono>
#include <optional>
#include <string>

#include "host/events/event.h"

namespace lm::host::events {

// "4.1 %" for 0.041, "56.0" for 56.
std::string percent_text(double share);
std::string tenths_text(double value);

// `event`: after its first frame. `since`: when the last one of its kind ended.
std::string why_started(const Event& event, std::optional<std::chrono::microseconds> since);

// `hidden`: how long, after its last frame, boxes of a change of light would have hidden it.
std::string why_quiet(const Event& event, std::chrono::microseconds gap, std::chrono::microseconds hidden);

}  // namespace lm::host::events
