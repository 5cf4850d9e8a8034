// The configuration file that the page may write.
#pragma once

#include <string>

namespace lm::host::commands::serve {

// Replaces the file atomically, so that it is never half written or missing. The previous version is kept
// with ".bak" appended to its name: returns that name, empty if there was no file. Throws Failure (kTrouble).
std::string save_document(const std::string& file, const std::string& text);

}  // namespace lm::host::commands::serve
