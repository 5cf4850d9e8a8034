#include "host/outputs/result_line.h"

#include <optional>
#include <utility>

#include "host/base/json_text.h"
#include "host/base/time_text.h"
#include "host/events/box_json.h"

namespace lm::host::outputs {
namespace {

std::optional<cv::Rect2d> box_of(const Json::Value& object) {
  if (!object.isObject()) return std::nullopt;
  for (const char* key : {"x", "y", "width", "height"}) {
    if (!object[key].isNumeric()) return std::nullopt;
  }
  const cv::Rect2d box(object["x"].asDouble(), object["y"].asDouble(), object["width"].asDouble(),
                       object["height"].asDouble());
  const cv::Rect2d inside = box & cv::Rect2d(0, 0, 1, 1);
  return inside.empty() ? std::nullopt : std::optional(inside);
}

Json::Value line_of_frame(std::int64_t frame, std::chrono::microseconds time) {
  Json::Value line;
  line["frame"] = Json::Int64(frame);
  line["time"] = base::seconds_number(time);
  return line;
}

}  // namespace

std::string result_line(std::int64_t frame, std::chrono::microseconds time, const events::Boxes& boxes,
                        const std::string& timestamp) {
  Json::Value line = line_of_frame(frame, time);
  for (const events::Box& box : boxes) {
    Json::Value value = events::box_value(box.area);
    value["regions"] = Json::arrayValue;
    for (const std::string& name : box.regions) value["regions"].append(name);
    line["boxes"].append(std::move(value));
  }
  line["timestamp"] = timestamp;
  return base::json_text(line);
}

std::string note_line(const std::string& note, std::int64_t frame, std::chrono::microseconds time) {
  Json::Value line = line_of_frame(frame, time);
  line["note"] = note;
  return base::json_text(line);
}

events::Boxes boxes_of(const std::string& document) {
  events::Boxes boxes;
  const Json::Value root = base::parse_json(document);
  if (!root.isObject()) return boxes;
  for (const Json::Value& object : root["object"]) {
    if (const std::optional<cv::Rect2d> box = box_of(object)) boxes.push_back({*box});
  }
  return boxes;
}

}  // namespace lm::host::outputs
