#include "host/detector/check/findings.h"

#include <json/json.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <tuple>

namespace lm::host::detector::check {

void Findings::add(Severity severity, const std::string& path, Place place, const std::string& text,
                   const std::string& hint) {
  all_.push_back({severity, path, place.line, place.column, text, hint});
}

void Findings::add(Severity severity, const std::string& path, const std::string& text,
                   const std::string& hint) {
  add(severity, path, path.empty() ? Place{} : places_.of_value(path), text, hint);
}

void Findings::add_to_key(Severity severity, const std::string& path, const std::string& text,
                          const std::string& hint) {
  add(severity, path, places_.of_key(path), text, hint);
}

void Findings::add_repeats() {
  for (const Places::Repeat& repeat : places_.repeats()) {
    add(Severity::kWarning, repeat.path, repeat.place,
        "appears twice; the one in line " + std::to_string(repeat.before.line) + " is ignored",
        "keep one of them");
  }
}

bool Findings::any_error() const {
  return std::any_of(all_.begin(), all_.end(),
                     [](const Finding& f) { return f.severity == Severity::kError; });
}

std::vector<Finding> Findings::in_order() const {
  std::vector<Finding> sorted = all_;
  std::stable_sort(sorted.begin(), sorted.end(), [](const Finding& a, const Finding& b) {
    return std::tie(a.line, a.column) < std::tie(b.line, b.column);
  });
  return sorted;
}

std::string shown(const Json::Value& value) {
  constexpr std::size_t kLongest = 40;
  Json::StreamWriterBuilder compact;
  compact["indentation"] = "";
  compact["emitUTF8"] = true;
  compact["precision"] = 9;
  std::string text = Json::writeString(compact, value);
  if (text.size() <= kLongest) return text;
  std::size_t end = kLongest - 3;
  while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80U) --end;  // within a character
  return text.substr(0, end) + "...";
}

std::string shown(double number) {
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), "%.6g", number);
  return text.data();
}

}  // namespace lm::host::detector::check
