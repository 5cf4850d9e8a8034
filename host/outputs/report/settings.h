// What a run was set to, for people.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "host/events/event_options.h"

namespace lm::host::outputs::report {

// Names and values: the rules for events, then what the document states, regions by their names.
std::vector<std::pair<std::string, std::string>> shown_settings(const std::string& document,
                                                                const events::EventRules& rules);

}  // namespace lm::host::outputs::report
