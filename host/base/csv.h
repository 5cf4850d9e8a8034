// Rows of tables for other programs.
#pragma once

#include <string>
#include <vector>

namespace lm::host::base {

// As RFC 4180 has it, with CR LF at its end; what needs quotation marks has them.
std::string csv_row(const std::vector<std::string>& cells);

}  // namespace lm::host::base
