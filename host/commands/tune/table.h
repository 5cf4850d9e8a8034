// The outcome as text.
#pragma once

#include <string>

#include "host/commands/tune/outcome.h"

namespace lm::host::commands::tune {

// For people: the spans, one line per setting, the proposal and its reason.
std::string table_text(const Outcome& outcome);

// The same as JSON on one line, with the document.
std::string to_json(const Outcome& outcome);

}  // namespace lm::host::commands::tune
