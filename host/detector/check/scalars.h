// The plain settings of a configuration document: what the plug-in makes of each, and what comes of all.
#pragma once

#include "config/settings.h"

namespace Json {
class Value;
}

namespace lm::host::detector::check {

class Findings;
struct SettledSizes;

// Reads them as the plug-in does, one after another. Returns the settings that it has then.
Settings check_scalars(const Json::Value& document, const SettledSizes& sizes, Findings& findings);

}  // namespace lm::host::detector::check
