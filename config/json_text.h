// Parsing configuration documents.
#pragma once

#include <json/forwards.h>

#include <string>

namespace lm {

// Parses `text` into `root`, comments allowed; false when it is not JSON. Numbers mean the same whatever
// locale the host has set. Throws Json::Exception for a document nested too deeply.
bool parseDocument(const std::string& text, Json::Value& root);

// `text` with every number that has a decimal point outside strings and comments written without one: 0.25
// becomes 025e-2, the same value to the last bit. Everything else is copied.
std::string withoutDecimalPoints(const std::string& text);

}  // namespace lm
