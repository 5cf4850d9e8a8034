// Findings as lines, for tests to compare.
#pragma once

#include <string>
#include <vector>

#include "host/check/check.h"

namespace lm::host::check {

// Of each, "error 1:17 sensitivity": what, where, on which key.
std::vector<std::string> places_of(const Verdict& verdict);

// The one on this key. Of several, the first; of none, one without a text.
Finding finding_on(const Verdict& verdict, const std::string& key);

}  // namespace lm::host::check
