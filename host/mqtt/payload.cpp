#include "host/mqtt/payload.h"

#include <json/json.h>

namespace lm::host::mqtt {

std::string payload_of(const Event& event) {
  Json::Value value;
  value["id"] = event.id;
  value["start"] = static_cast<double>(event.start.count()) / 1e6;
  value["end"] = static_cast<double>(event.end.count()) / 1e6;
  Json::StreamWriterBuilder builder;
  builder["indentation"] = "";
  return Json::writeString(builder, value);
}

}  // namespace lm::host::mqtt
