// Findings as lines, for tests to compare.
#pragma once

#include <string>
#include <vector>

#include "host/detector/check/check.h"

namespace lm::host::check {

// Of each, "error 1:17 sensitivity": what, where, on which key.
std::vector<std::string> places_of(const host::detector::check::Verdict& verdict);

// The one on this key. Of several, the first; of none, one without a text.
host::detector::check::Finding finding_on(const host::detector::check::Verdict& verdict,
                                          const std::string& key);

}  // namespace lm::host::check
