// Changes values of a document and keeps the rest of its text.
#pragma once

#include <string>

#include "host/commands/tune/setting.h"

namespace lm::host::commands::tune {

// `text` with these members of the top-level object set to these texts: existing values are replaced in
// place, new members are inserted at the start. Everything else stays byte for byte, including comments.
// Throws std::invalid_argument if the text is not a JSON object.
std::string with_members(const std::string& text, const Members& members);

}  // namespace lm::host::commands::tune
