// Why events start and end, as sentences, independent of the locale.
#pragma once

#include <chrono>
#include <optional>
#include <string>

#include "host/events/event.h"

namespace lm::host::events {

// "4.1 %" for 0.041, "56.0" for 56.
std::string percent_text(double share);
std::string tenths_text(double value);

// `event`: after its first frame. `since`: end of the previous event of its kind. `alone`: no other one is in
// progress.
std::string why_started(const Event& event, std::optional<std::chrono::microseconds> since,
                        bool alone = true);

// `hidden`: for how long after its last frame boxes of a lighting change would have hidden it.
std::string why_quiet(const Event& event, std::chrono::microseconds gap, std::chrono::microseconds hidden);

}  // namespace lm::host::events
