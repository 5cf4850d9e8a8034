// Verdicts in words.
#pragma once

#include <string>

#include "host/detector/check/check.h"

namespace lm::host::detector::check {

// Such as night.json:4:18: "sensitivity": 9 is out of range. `name`: of the document.
std::string sentence(const std::string& name, const Finding& finding);

// What `lightmotion check` prints: findings with the worst first, what is in effect, how many findings there
// are. Several lines.
std::string to_text(const std::string& name, const Verdict& verdict);

}  // namespace lm::host::detector::check
