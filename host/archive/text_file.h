// Small files as texts.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace lm::host {

// The whole file; nothing, and the cause in errno, when it cannot be read.
std::optional<std::string> read_text(const std::string& file);

// Lines without their line feeds, into a file that has its name when it is complete. Throws Failure
// (kTrouble).
void write_lines(const std::string& file, const std::vector<std::string>& lines);

}  // namespace lm::host
