// The one file that the page may write.
#pragma once

#include <string>

namespace lm::host::commands::serve {

// Puts the text into the file at once, so that the file is never half written or missing. What was there
// before stays beside it, with ".bak" added to its name: returns that name, empty when there was no file.
// Throws Failure (kTrouble).
std::string save_document(const std::string& file, const std::string& text);

}  // namespace lm::host::commands::serve
