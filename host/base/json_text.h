// JSON as text: the one reader, and the one writer, of the program.
#pragma once

#include <json/json.h>

#include <string>
#include <string_view>

namespace lm::host::base {

// What the text stands for; null for what is no JSON, or is nested too deeply to be read.
Json::Value parse_json(const std::string& text);

// What the program writes for other programs, on one line without a line feed: members in the order of
// keys.h, numbers with a fraction rounded to the decimals of their key.
std::string json_text(const Json::Value& value);

// ... the value of that key alone.
std::string json_text(const Json::Value& value, std::string_view key);

// What is not the program's own: on one line, numbers with all their digits, members sorted by name.
std::string verbatim_json(const Json::Value& value);

}  // namespace lm::host::base
