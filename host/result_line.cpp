#include "host/result_line.h"

#include <optional>

#include "host/json_text.h"
#include "host/time_text.h"

namespace lm::host {
namespace {

std::optional<cv::Rect2d> box_of(const Json::Value& object) {
  if (!object.isObject()) return std::nullopt;
  for (const char* key : {"x", "y", "width", "height"}) {
    if (!object[key].isNumeric()) return std::nullopt;
  }
  return cv::Rect2d(object["x"].asDouble(), object["y"].asDouble(), object["width"].asDouble(),
                    object["height"].asDouble());
}

}  // namespace

std::string result_line(const std::string& document, std::int64_t frame, std::chrono::microseconds time) {
  std::string line = document;
  std::erase_if(line, [](char c) { return c == '\n' || c == '\r'; });
  const std::size_t inside = line.find('{') + 1;
  const bool has_members = line.find_first_not_of(" \t", inside) != line.find_last_of('}');
  line.insert(inside, "\"frame\":" + std::to_string(frame) + ",\"time\":" + seconds_text(time) +
                          (has_members ? "," : ""));
  return line;
}

std::string note_line(const std::string& note, std::int64_t frame, std::chrono::microseconds time) {
  return result_line("{\"note\":" + Json::valueToQuotedString(note.c_str()) + "}", frame, time);
}

std::vector<cv::Rect2d> boxes_of(const std::string& document) {
  std::vector<cv::Rect2d> boxes;
  const Json::Value root = parse_json(document);
  if (!root.isObject()) return boxes;
  for (const Json::Value& object : root["object"]) {
    if (const std::optional<cv::Rect2d> box = box_of(object)) boxes.push_back(*box);
  }
  return boxes;
}

}  // namespace lm::host
