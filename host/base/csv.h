// CSV rows.
#pragma once

#include <string>
#include <vector>

namespace lm::host::base {

// As in RFC 4180, ending in CR LF; cells are quoted only when necessary.
std::string csv_row(const std::vector<std::string>& cells);

}  // namespace lm::host::base
