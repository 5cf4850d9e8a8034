#include "host/detector/lines.h"

#include "host/base/json_text.h"

namespace lm::host::detector {
namespace {

std::optional<double> number_of(const Json::Value& value) {
  if (value.isNumeric()) return value.asDouble();
  try {
    return value.isString() ? std::optional<double>(std::stof(value.asString())) : std::nullopt;
  } catch (const std::exception&) {
    return std::nullopt;
  }
}

std::optional<cv::Point2d> point_of(const Json::Value& value) {
  if (!value.isObject()) return std::nullopt;
  const std::optional<double> x = number_of(value["x"]);
  const std::optional<double> y = number_of(value["y"]);
  return x && y ? std::optional(cv::Point2d(*x, *y)) : std::nullopt;
}

std::optional<Line> line_of(const Json::Value& value) {
  if (!value.isObject() || !value["points"].isArray() || value["points"].size() != 2) return std::nullopt;
  const std::optional<cv::Point2d> from = point_of(value["points"][0]);
  const std::optional<cv::Point2d> to = point_of(value["points"][1]);
  if (!from || !to || *from == *to) return std::nullopt;
  Line line{"", *from, *to, std::nullopt};
  if (value["name"].isString()) line.name = value["name"].asString();
  for (const Side side : {Side::kLeft, Side::kRight}) {
    if (value["direction"] == name_of(side)) line.only = side;
  }
  return line;
}

}  // namespace

const char* name_of(Side side) { return side == Side::kLeft ? "left" : "right"; }

std::vector<Line> lines_of(const std::string& document) {
  std::vector<Line> lines;
  const Json::Value root = base::parse_json(document);
  if (!root.isObject() || !root["lines"].isArray()) return lines;
  for (const Json::Value& item : root["lines"]) {
    if (const std::optional<Line> line = line_of(item)) lines.push_back(*line);
  }
  return lines;
}

}  // namespace lm::host::detector
