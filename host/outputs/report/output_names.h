// File names for events, which sort by time.
#pragma once

#include <string>

#include "host/events/event.h"

namespace lm::host::outputs::report {

// Time, number and kind: "00h01m12.480s-0003-motion", or with a wall clock
// "2026-03-01T07-05-12.480Z-0003-motion". No character is special to a shell or a file system.
std::string event_stem(const events::Event& event);

const char* kind_name(events::EventKind kind);

}  // namespace lm::host::outputs::report
