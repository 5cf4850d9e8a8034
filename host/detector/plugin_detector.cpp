#include "host/detector/plugin_detector.h"

#include <optional>
#include <stdexcept>

#include "host/base/failure.h"
#include "host/base/json_text.h"
#include "host/detector/document.h"

namespace lm::host::detector {
namespace {

std::string translated(const Document& document, cv::Size frame) {
  try {
    return plugin_document(document.text, frame);
  } catch (const std::invalid_argument& misfit) {
    throw base::Failure(base::kRefused, about(document, misfit.what()));
  }
}

std::optional<cv::Rect2d> area_of(const Json::Value& object) {
  if (!object.isObject()) return std::nullopt;
  for (const char* key : {"x", "y", "width", "height"}) {
    if (!object[key].isNumeric()) return std::nullopt;
  }
  const cv::Rect2d area(object["x"].asDouble(), object["y"].asDouble(), object["width"].asDouble(),
                        object["height"].asDouble());
  const cv::Rect2d inside = clipped(area);
  return inside.empty() ? std::nullopt : std::optional(inside);
}

}  // namespace

Boxes boxes_of(const std::string& result) {
  Boxes boxes;
  const Json::Value root = base::parse_json(result);
  if (!root.isObject()) return boxes;
  for (const Json::Value& object : root["object"]) {
    if (const std::optional<cv::Rect2d> area = area_of(object)) boxes.push_back({*area});
  }
  return boxes;
}

PluginDetector::PluginDetector(const std::string& path, const Document& document, cv::Size frame)
    : document_(translated(document, frame)), regions_(document_), plugin_(path) {
  const std::string refusal = plugin_.start(document_);
  if (!refusal.empty())
    throw base::Failure(base::kRefused, about(document, "the plug-in refuses it: " + refusal));
}

void PluginDetector::restart() { plugin_.restart(document_); }

Boxes PluginDetector::process(const cv::Mat& image, std::int64_t milliseconds) {
  const cv::Mat packed = image.isContinuous() ? image : image.clone();
  Boxes boxes = boxes_of(plugin_.process(packed.data, std::to_string(milliseconds)));
  for (Box& box : boxes) box.regions = regions_.touched(box.area);
  return boxes;
}

}  // namespace lm::host::detector
