// The plain settings of a configuration document: how the plug-in interprets each, and the resulting
// settings.
#pragma once

#include <map>
#include <string>

#include "config/settings.h"

namespace Json {
class Value;
}

namespace lm::check {

class Findings;

// The frame size as the reader gets it: the texts of "frmW", "frmH" and "frmChn".
using SizeTexts = std::map<std::string, std::string>;

// Reads them in the plug-in's order. Returns the resulting settings.
Settings checkScalars(const Json::Value& document, const SizeTexts& sizes, Findings& findings);

}  // namespace lm::check
