#include "host/commands/serve/shot.h"

#include <opencv2/imgproc.hpp>

#include "host/base/json_text.h"
#include "host/base/time_text.h"
#include "host/events/box_json.h"
#include "host/outputs/report/image_bytes.h"
#include "host/outputs/report/shown_size.h"

namespace lm::host::commands::serve {
namespace {

constexpr int kLongestSide = 1280;
constexpr int kCoarseness = 4;

double milliseconds(std::chrono::microseconds time) { return static_cast<double>(time.count()) / 1000; }

Json::Value boxes_value(const events::Boxes& boxes) {
  Json::Value list(Json::arrayValue);
  for (const events::Box& box : boxes) list.append(events::box_value(box.area));
  return list;
}

}  // namespace

std::string page_picture(const cv::Mat& image, cv::Size pixel_aspect) {
  const cv::Size size = outputs::report::shown_size(image.size(), pixel_aspect, kLongestSide);
  if (size == image.size()) return outputs::report::jpeg_bytes(image, kCoarseness);
  cv::Mat shown;
  cv::resize(image, shown, size, 0, 0, size.area() < image.size().area() ? cv::INTER_AREA : cv::INTER_LINEAR);
  return outputs::report::jpeg_bytes(shown, kCoarseness);
}

std::string shot_json(const Shot& shot) {
  Json::Value value;
  value["sequence"] = Json::UInt64(shot.sequence);
  value["frame"] = Json::Int64(shot.frame);
  value["time"] = base::seconds_number(shot.time);
  value["boxes"] = boxes_value(shot.found.boxes);
  value["plugin_ms"] = milliseconds(shot.found.cost);
  value["fps"] = shot.rate;
  value["event_count"] = Json::Int64(shot.events);
  value["state"] = Json::UInt64(shot.state);
  if (shot.old) {
    value["baseline"]["boxes"] = boxes_value(shot.old->boxes);
    value["baseline"]["plugin_ms"] = milliseconds(shot.old->cost);
  }
  return base::json_text(value);
}

}  // namespace lm::host::commands::serve
