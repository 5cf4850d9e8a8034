// The program's JSON reader and writer.
#pragma once

#include <json/json.h>

#include <string>
#include <string_view>

namespace lm::host::base {

// The parsed text; null for invalid JSON and for JSON nested too deeply.
Json::Value parse_json(const std::string& text);

// The program's own output, on one line without a line feed: members in the order of keys.h, fractional
// numbers rounded to the decimals of their key.
std::string json_text(const Json::Value& value);

// The same for the value of that key alone.
std::string json_text(const Json::Value& value, std::string_view key);

// JSON from elsewhere: on one line, numbers with all their digits, members sorted by name.
std::string verbatim_json(const Json::Value& value);

}  // namespace lm::host::base
