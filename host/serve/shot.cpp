#include "host/serve/shot.h"

#include <json/json.h>

#include <opencv2/imgproc.hpp>

#include "host/events/event_json.h"
#include "host/report/image_bytes.h"
#include "host/report/shown_size.h"

namespace lm::host {
namespace {

constexpr int kLongestSide = 1280;
constexpr int kCoarseness = 4;

double seconds(std::chrono::microseconds time) { return std::chrono::duration<double>(time).count(); }

double milliseconds(std::chrono::microseconds time) { return seconds(time) * 1000; }

Json::Value boxes_value(const std::vector<cv::Rect2d>& boxes) {
  Json::Value list(Json::arrayValue);
  for (const cv::Rect2d& box : boxes) {
    Json::Value value(Json::arrayValue);
    for (const double number : {box.x, box.y, box.width, box.height}) value.append(number);
    list.append(value);
  }
  return list;
}

}  // namespace

std::string page_picture(const cv::Mat& image, cv::Size pixel_aspect) {
  const cv::Size size = shown_size(image.size(), pixel_aspect, kLongestSide);
  if (size == image.size()) return jpeg_bytes(image, kCoarseness);
  cv::Mat shown;
  cv::resize(image, shown, size, 0, 0, size.area() < image.size().area() ? cv::INTER_AREA : cv::INTER_LINEAR);
  return jpeg_bytes(shown, kCoarseness);
}

std::string shot_json(const Shot& shot) {
  Json::Value value;
  value["sequence"] = Json::UInt64(shot.sequence);
  value["frame"] = Json::Int64(shot.frame);
  value["time"] = seconds(shot.time);
  value["boxes"] = boxes_value(shot.found.boxes);
  value["cost"] = milliseconds(shot.found.cost);
  value["fps"] = shot.rate;
  value["events"] = Json::Int64(shot.events);
  value["state"] = Json::UInt64(shot.state);
  if (shot.old) {
    value["old"]["boxes"] = boxes_value(shot.old->boxes);
    value["old"]["cost"] = milliseconds(shot.old->cost);
  }
  return json_text(value);
}

}  // namespace lm::host
