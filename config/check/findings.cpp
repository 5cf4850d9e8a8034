#include "config/check/findings.h"

#include <json/json.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <tuple>

namespace lm::check {

std::string message(const Finding& finding) {
  std::string text = finding.key.empty() ? finding.text : '"' + finding.key + "\": " + finding.text;
  if (!finding.hint.empty()) text.append(" (").append(finding.hint).append(")");
  return text;
}

bool Findings::reads(const Json::Value& value) const {
  return value.isString() || (reader_ == Reader::handle && value.isNumeric());
}

void Findings::add(Severity severity, const std::string& path, Place place, const std::string& text,
                   const std::string& hint) {
  all_.push_back({severity, path, place.line, place.column, text, hint});
}

void Findings::add(Severity severity, const std::string& path, const std::string& text,
                   const std::string& hint) {
  add(severity, path, path.empty() ? Place{} : places_.ofValue(path), text, hint);
}

void Findings::addToKey(Severity severity, const std::string& path, const std::string& text,
                        const std::string& hint) {
  add(severity, path, places_.ofKey(path), text, hint);
}

void Findings::addRepeats() {
  for (const Places::Repeat& repeat : places_.repeats()) {
    add(Severity::warning, repeat.path, repeat.place,
        "appears twice; the one in line " + std::to_string(repeat.before.line) + " is ignored",
        "keep one of them");
  }
}

bool Findings::anyError() const {
  return std::any_of(all_.begin(), all_.end(),
                     [](const Finding& f) { return f.severity == Severity::error; });
}

std::vector<Finding> Findings::inOrder() const {
  std::vector<Finding> sorted = all_;
  std::stable_sort(sorted.begin(), sorted.end(), [](const Finding& a, const Finding& b) {
    return std::tie(a.line, a.column) < std::tie(b.line, b.column);
  });
  return sorted;
}

std::string shown(const Json::Value& value) {
  constexpr std::size_t longest = 40;
  Json::StreamWriterBuilder compact;
  compact["indentation"] = "";
  compact["emitUTF8"] = true;
  compact["precision"] = 9;
  std::string text = Json::writeString(compact, value);
  if (text.size() <= longest) return text;
  std::size_t end = longest - 3;
  while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80U) --end;  // within a character
  return text.substr(0, end) + "...";
}

std::string numberText(const Json::Value& value) {
  const bool whole = value.type() == Json::realValue && value.isInt64();
  return whole ? std::to_string(value.asInt64()) : value.asString();
}

std::string shown(double number) {
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), "%.6g", number);
  return text.data();
}

}  // namespace lm::check
