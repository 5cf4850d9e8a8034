#include "host/detector/check/lines.h"

#include <json/json.h>

#include <cstdlib>
#include <optional>
#include <string>

#include "config/check/findings.h"
#include "config/check/known_keys.h"

namespace lm::host::detector::check {
namespace {

using lm::check::Findings;
using lm::check::Severity;
using lm::check::shown;

constexpr const char* kPoint = R"({"x": "0.25", "y": "0.5"})";
constexpr const char* kLine =
    R"({"name": "gate", "points": [{"x": "0.1", "y": "0.5"}, {"x": "0.9", "y": "0.5"}]})";

std::optional<double> number_in(const Json::Value& value) {
  if (value.isNumeric()) return value.asDouble();
  if (!value.isString()) return std::nullopt;
  const std::string text = value.asString();
  char* end = nullptr;
  const double number = std::strtod(text.c_str(), &end);
  return text.empty() || *end != '\0' ? std::nullopt : std::optional(number);
}

void check_point(const Json::Value& point, const std::string& path, Findings& findings) {
  if (!point.isObject()) {
    findings.add(Severity::error, path, shown(point) + " is not a point", kPoint);
    return;
  }
  lm::check::checkKeys(point, path, {"x", "y", "comment"}, findings);
  for (const char* axis : {"x", "y"}) {
    const std::string place = point.isMember(axis) ? path + '.' + axis : path;
    const std::string what = point.isMember(axis) ? "" : std::string("\"") + axis + "\" is missing: it ";
    const std::optional<double> number = number_in(point[axis]);
    if (!number) {
      findings.add(Severity::error, place,
                   what + "must be a number" + (what.empty() ? ", not " + shown(point[axis]) : ""),
                   "a fraction of the frame, such as \"0.25\"");
    } else if (!(*number >= -1 && *number <= 2)) {
      findings.add(
          Severity::warning, place, "is far outside the frame",
          "coordinates are fractions of the frame: 0 is its left or top edge, 1 its right or bottom edge");
    }
  }
}

bool are_equal(const Json::Value& a, const Json::Value& b) {
  if (!a.isObject() || !b.isObject()) return false;
  for (const char* axis : {"x", "y"}) {
    const std::optional<double> number = number_in(a[axis]);
    if (!number || number != number_in(b[axis])) return false;
  }
  return true;
}

void check_points(const Json::Value& points, const std::string& path, Findings& findings) {
  if (!points.isArray() || points.size() != 2) {
    findings.add(Severity::error, path,
                 points.isArray() ? "has " + std::to_string(points.size()) +
                                        (points.size() == 1 ? " point" : " points") + ", but a line has two"
                                  : "has no list of points",
                 kLine);
    return;
  }
  for (const Json::ArrayIndex i : {0U, 1U}) {
    check_point(points[i], path + ".points[" + std::to_string(i) + ']', findings);
  }
  if (are_equal(points[0], points[1])) {
    findings.add(Severity::error, path + ".points", "both points are the same", kLine);
  }
}

void check_line(const Json::Value& line, const std::string& path, Findings& findings) {
  if (!line.isObject()) {
    findings.add(Severity::error, path, shown(line) + " is not a line", kLine);
    return;
  }
  lm::check::checkKeys(line, path, {"name", "points", "direction", "comment"}, findings);
  if (line.isMember("name") && !line["name"].isString()) {
    findings.add(Severity::warning, path + ".name",
                 shown(line["name"]) + " is not a string: the line has no name",
                 "write the name in quotation marks");
  }
  check_points(line["points"], path, findings);
  const Json::Value& direction = line["direction"];
  if (!direction.isNull() && direction != "both" && direction != "left" && direction != "right") {
    findings.add(Severity::error, path + ".direction", shown(direction) + " is not a direction",
                 "\"both\", or the side to which an object goes, seen from the first point towards the "
                 "second: \"left\" or \"right\"");
  }
}

}  // namespace

void check_lines(const Json::Value& document, Findings& findings) {
  const Json::Value& lines = document["lines"];
  if (!document.isMember("lines")) return;
  if (!lines.isArray()) {
    findings.add(Severity::error, "lines", shown(lines) + " is not a list of lines",
                 "[" + std::string(kLine) + "]");
    return;
  }
  for (Json::ArrayIndex i = 0; i < lines.size(); ++i) {
    check_line(lines[i], "lines[" + std::to_string(i) + ']', findings);
  }
}

}  // namespace lm::host::detector::check
