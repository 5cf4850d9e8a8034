// Events as JSON; documented in docs/results.md.
#pragma once

#include <json/json.h>

#include <string>

#include "host/events/event.h"

namespace lm::host::events {

const char* kind_text(EventKind kind);

Json::Value event_value(const Event& event);

std::string event_json(const Event& event);

}  // namespace lm::host::events
