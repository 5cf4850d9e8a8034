// The outcome in words and numbers.
#pragma once

#include <string>

#include "host/commands/tune/outcome.h"

namespace lm::host::commands::tune {

// For people: the spans, a line for each setting, the proposal and its reason.
std::string table_text(const Outcome& outcome);

// The same on one line of JSON, with the document.
std::string to_json(const Outcome& outcome);

}  // namespace lm::host::commands::tune
