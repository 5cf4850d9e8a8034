// Parsing configuration documents.
#pragma once

#include <json/forwards.h>

#include <string>

namespace lm {

// Parses `text` into `root`, comments allowed; false when it is not JSON. The host's locale has no effect on
// numbers. Throws Json::Exception for a document that is nested too deeply.
bool parseDocument(const std::string& text, Json::Value& root);

// Rewrites the numbers of `text` that have a decimal point, except in strings and comments: 0.25 becomes
// 025e-2, which has the same value to the last bit. A number that jsoncpp refuses stays one that it refuses.
// Everything else is copied.
std::string withoutDecimalPoints(const std::string& text);

}  // namespace lm
