#include "host/detector/check/adapt.h"

#include <json/json.h>

#include "host/detector/adapt.h"

namespace lm::host::detector::check {

using lm::check::Severity;

void check_adapt(const Json::Value& document, lm::check::Reader reader, lm::check::Findings& findings) {
  const Json::Value& value = document["adapt"];
  if (!value.isNull() && !value.isBool()) {
    findings.add(Severity::error, "adapt", lm::check::shown(value) + " is neither true nor false",
                 "true: the program chooses what the configuration leaves out");
  }
  if (adapts(document) && reader == lm::check::Reader::plugin) {
    findings.addToKey(Severity::warning, "adapt", "has no effect: the plug-in does not adapt",
                      "remove it; what the configuration leaves out has its default");
  }
}

}  // namespace lm::host::detector::check
