// The plain settings of a configuration document: how the plug-in interprets each, and the resulting
// settings.
#pragma once

#include "config/settings.h"

namespace Json {
class Value;
}

namespace lm::host::detector::check {

class Findings;
struct SettledSizes;

// Reads them in the plug-in's order. Returns the resulting settings.
Settings check_scalars(const Json::Value& document, const SettledSizes& sizes, Findings& findings);

}  // namespace lm::host::detector::check
