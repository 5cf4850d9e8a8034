// A document with other values, its text kept as its author wrote it.
#pragma once

#include <string>

#include "host/commands/tune/setting.h"

namespace lm::host::commands::tune {

// `text` with these members of the top-level object set to these texts: values that are there are replaced
// where they stand, others come first. Everything else stays, byte for byte, comments too. Throws
// std::invalid_argument when the text is not a JSON object.
std::string with_members(const std::string& text, const Members& members);

}  // namespace lm::host::commands::tune
