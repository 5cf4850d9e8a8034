// Boxes as result lines.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>

#include "host/events/box.h"

namespace lm::host::outputs {

// The result line of a frame with boxes, without a line feed. `milliseconds`: the timestamp that the
// detector got.
std::string result_line(std::int64_t frame, std::chrono::microseconds time, const events::Boxes& boxes,
                        std::int64_t milliseconds);

// A line about an event in the source before this frame.
std::string note_line(const std::string& note, std::int64_t frame, std::chrono::microseconds time);

}  // namespace lm::host::outputs
