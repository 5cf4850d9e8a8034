// Parses the plug-in's result documents into boxes and writes boxes as result lines.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>

#include "host/events/box.h"

namespace lm::host::outputs {

// The result line of a frame with boxes, without a line feed. `timestamp`: as passed to the plug-in.
std::string result_line(std::int64_t frame, std::chrono::microseconds time, const events::Boxes& boxes,
                        const std::string& timestamp);

// A line about an event in the source before this frame.
std::string note_line(const std::string& note, std::int64_t frame, std::chrono::microseconds time);

// The boxes of the plug-in's document, in its order and clipped to the frame, without regions: the
// plug-in's own extend beyond the right and bottom border. Empty for an empty text and for one without boxes.
// Skips entries that are not objects with four numbers, and boxes outside the frame.
events::Boxes boxes_of(const std::string& document);

}  // namespace lm::host::outputs
