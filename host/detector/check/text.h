// Verdicts as text.
#pragma once

#include <string>

#include "host/detector/check/check.h"

namespace lm::host::detector::check {

// For example: night.json:4:18: "sensitivity": 9 is out of range. `name`: of the document.
std::string sentence(const std::string& name, const Finding& finding);

// The output of `lightmotion check`, several lines: findings with the most severe first, the effective
// values, the number of findings.
std::string to_text(const std::string& name, const Verdict& verdict);

}  // namespace lm::host::detector::check
