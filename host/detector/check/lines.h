// The lines of a configuration document as written.
#pragma once

namespace Json {
class Value;
}
namespace lm::check {
class Findings;
}

namespace lm::host::detector::check {

// Reports lines that could never be crossed. Only this program reads them (detector/lines.h).
void check_lines(const Json::Value& document, lm::check::Findings& findings);

}  // namespace lm::host::detector::check
