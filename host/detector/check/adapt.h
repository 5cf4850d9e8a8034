// The key "adapt", which only the program reads.
#pragma once

#include "config/check/findings.h"

namespace Json {
class Value;
}

namespace lm::host::detector::check {

void check_adapt(const Json::Value& document, lm::check::Reader reader, lm::check::Findings& findings);

}  // namespace lm::host::detector::check
