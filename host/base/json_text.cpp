#include "host/base/json_text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <memory>
#include <vector>

#include "host/base/keys.h"

namespace lm::host::base {
namespace {

constexpr int kNoKey = 6;  // decimals outside any key

void append_number(std::string& text, double number, int decimals) {
  std::array<char, 400> digits{};  // the largest double has 309 digits before the point
  if (!std::isfinite(number)) {
    text += "null";
    return;
  }
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number,
                                 std::chars_format::fixed, decimals > 0 ? decimals : kNoKey)
                       .ptr;
  text.append(digits.data(), end);
}

int decimals_of(std::string_view name) {
  const std::size_t place = place_of(name);
  return place < keys().size() ? keys()[place].decimals : kNoKey;
}

void append(std::string& text, const Json::Value& value, int decimals);

void append_array(std::string& text, const Json::Value& array, int decimals) {
  text += '[';
  for (const Json::Value& item : array) {
    if (text.back() != '[') text += ',';
    append(text, item, decimals);
  }
  text += ']';
}

void append_object(std::string& text, const Json::Value& object) {
  std::vector<std::string> names = object.getMemberNames();
  std::ranges::stable_sort(names, {}, place_of);
  text += '{';
  for (const std::string& name : names) {
    if (text.back() != '{') text += ',';
    text += Json::valueToQuotedString(name.c_str()) + ':';
    append(text, object[name], decimals_of(name));
  }
  text += '}';
}

void append(std::string& text, const Json::Value& value, int decimals) {
  const bool own = decimals != kVerbatim;
  if (own && value.isObject()) {
    append_object(text, value);
  } else if (own && value.isArray()) {
    append_array(text, value, decimals);
  } else if (own && value.type() == Json::realValue) {
    append_number(text, value.asDouble(), decimals);
  } else {
    text += verbatim_json(value);
  }
}

}  // namespace

Json::Value parse_json(const std::string& text) {
  Json::Value value;
  const std::unique_ptr<Json::CharReader> reader(Json::CharReaderBuilder().newCharReader());
  try {
    if (reader->parse(text.data(), text.data() + text.size(), &value, nullptr)) return value;
  } catch (const Json::Exception&) {  // nested too deeply
  }
  return {};
}

std::string json_text(const Json::Value& value) {
  std::string text;
  append(text, value, kNoKey);
  return text;
}

std::string json_text(const Json::Value& value, std::string_view key) {
  std::string text;
  append(text, value, decimals_of(key));
  return text;
}

std::string verbatim_json(const Json::Value& value) {
  static const Json::StreamWriterBuilder compact = [] {
    Json::StreamWriterBuilder builder;
    builder["indentation"] = "";
    builder["commentStyle"] = "None";
    return builder;
  }();
  return Json::writeString(compact, value);
}

}  // namespace lm::host::base
