// JSON as text.
#pragma once

#include <json/json.h>

#include <string>

namespace lm::host {

// What the text stands for; null for what is no JSON, or is nested too deeply to be read.
Json::Value parse_json(const std::string& text);

}  // namespace lm::host
