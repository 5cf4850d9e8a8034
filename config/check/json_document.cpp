#include "config/check/json_document.h"

#include <json/json.h>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <new>
#include <string_view>

#include "config/json_text.h"

namespace lm::check {
namespace {

// From jsoncpp's "* Line 1, Column 3\n  Syntax error: ...\n", where further errors follow.
NoDocument firstError(const std::string& report) {
  int line = 0;
  int column = 0;
  const std::size_t endOfPlace = std::min(report.find('\n'), report.size());
  const std::size_t cause = report.find_first_not_of(" \n", endOfPlace);
  if (cause == std::string::npos || std::sscanf(report.c_str(), "* Line %d, Column %d", &line, &column) != 2)
    return NoDocument("not JSON: " + report);
  return {line, column,
          "not JSON: " + report.substr(cause, std::min(report.find('\n', cause), report.size()) - cause)};
}

// The errors; empty if there are none.
std::string parse(const std::string& text, Json::Value& root) {
  Json::CharReaderBuilder settings;
  settings["collectComments"] = false;
  settings["failIfExtra"] = true;
  const std::unique_ptr<Json::CharReader> reader(settings.newCharReader());
  std::string report;
  try {
    if (reader->parse(text.data(), text.data() + text.size(), &root, &report)) return "";
  } catch (const Json::RuntimeError& error) {
    // The other one is that an allocation failed.
    if (std::string_view(error.what()).find("stackLimit") == std::string_view::npos) throw std::bad_alloc();
    throw NoDocument("nested too deeply");
  }
  return report.empty() ? "no document" : report;
}

}  // namespace

NoDocument::NoDocument(int line, int column, const std::string& cause)
    : std::invalid_argument("line " + std::to_string(line) + ", column " + std::to_string(column) + ": " +
                            cause),
      line_(line),
      column_(column),
      cause_(cause) {}

Json::Value readDocument(const std::string& text) {
  Json::Value root;
  const std::string report = parse(text, root);
  if (!report.empty()) throw firstError(report);
  if (!root.isObject()) throw NoDocument("not a JSON object");
  return root;
}

Json::Value readDocumentInAnyLocale(const std::string& text) {
  Json::Value root;
  if (parse(withoutDecimalPoints(text), root).empty() && root.isObject()) return root;
  readDocument(text);
  throw std::bad_alloc();  // what was wrong is not the text: the streams that read numbers swallow it
}

}  // namespace lm::check
