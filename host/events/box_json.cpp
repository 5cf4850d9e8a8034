#include "host/events/box_json.h"

namespace lm::host::events {

Json::Value box_value(const cv::Rect2d& box) {
  Json::Value value;
  value["x"] = box.x;
  value["y"] = box.y;
  value["width"] = box.width;
  value["height"] = box.height;
  return value;
}

}  // namespace lm::host::events
