// Events as rows of a table (RFC 4180).
#pragma once

#include <string>

#include "host/events/event.h"

namespace lm::host::events {

// Both with their line ends.
std::string csv_heading();
std::string event_csv(const Event& event);

}  // namespace lm::host::events
