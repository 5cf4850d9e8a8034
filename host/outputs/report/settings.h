// The settings of a run, for people.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "host/events/event_options.h"

namespace lm::host::outputs::report {

// Names and values: the event options, then the document's settings, with regions by name.
std::vector<std::pair<std::string, std::string>> shown_settings(const std::string& document,
                                                                const events::EventRules& rules);

}  // namespace lm::host::outputs::report
