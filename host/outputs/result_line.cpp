#include "host/outputs/result_line.h"

#include <utility>

#include "host/base/json_text.h"
#include "host/base/time_text.h"
#include "host/events/box_json.h"

namespace lm::host::outputs {
namespace {

Json::Value line_of_frame(std::int64_t frame, std::chrono::microseconds time) {
  Json::Value line;
  line["frame"] = Json::Int64(frame);
  line["time"] = base::seconds_number(time);
  return line;
}

}  // namespace

std::string result_line(std::int64_t frame, std::chrono::microseconds time, const events::Boxes& boxes,
                        std::int64_t milliseconds) {
  Json::Value line = line_of_frame(frame, time);
  for (const events::Box& box : boxes) {
    Json::Value value = events::box_value(box.area);
    value["regions"] = Json::arrayValue;
    for (const std::string& name : box.regions) value["regions"].append(name);
    line["boxes"].append(std::move(value));
  }
  line["timestamp"] = std::to_string(milliseconds);
  return base::json_text(line);
}

std::string note_line(const std::string& note, std::int64_t frame, std::chrono::microseconds time) {
  Json::Value line = line_of_frame(frame, time);
  line["note"] = note;
  return base::json_text(line);
}

}  // namespace lm::host::outputs
