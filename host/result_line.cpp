#include "host/result_line.h"

#include <json/json.h>

#include <memory>

#include "host/time_text.h"

namespace lm::host {

std::string result_line(const std::string& document, std::int64_t frame, std::chrono::microseconds time) {
  std::string line = document;
  std::erase_if(line, [](char c) { return c == '\n' || c == '\r'; });
  const std::size_t inside = line.find('{') + 1;
  const bool has_members = line.find_first_not_of(" \t", inside) != line.find_last_of('}');
  line.insert(inside, "\"frame\":" + std::to_string(frame) + ",\"time\":" + seconds_text(time) +
                          (has_members ? "," : ""));
  return line;
}

std::vector<cv::Rect2d> boxes_of(const std::string& document) {
  std::vector<cv::Rect2d> boxes;
  Json::Value root;
  const std::unique_ptr<Json::CharReader> reader(Json::CharReaderBuilder().newCharReader());
  const char* text = document.data();
  if (!reader->parse(text, text + document.size(), &root, nullptr) || !root.isObject()) return boxes;
  for (const Json::Value& object : root["object"]) {
    boxes.emplace_back(object["x"].asDouble(), object["y"].asDouble(), object["width"].asDouble(),
                       object["height"].asDouble());
  }
  return boxes;
}

}  // namespace lm::host
