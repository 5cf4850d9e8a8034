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

Json::Value object_value(const Box& box) {
  Json::Value value = box_value(box.area);
  if (box.by_light) value["kind"] = "light";
  if (box.id > 0) value["id"] = Json::Int64(box.id);
  for (const std::int64_t other : box.others) value["others"].append(Json::Int64(other));
  return value;
}

}  // namespace lm::host::events
