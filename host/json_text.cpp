#include "host/json_text.h"

#include <memory>

namespace lm::host {

Json::Value parse_json(const std::string& text) {
  Json::Value value;
  const std::unique_ptr<Json::CharReader> reader(Json::CharReaderBuilder().newCharReader());
  try {
    if (reader->parse(text.data(), text.data() + text.size(), &value, nullptr)) return value;
  } catch (const Json::Exception&) {  // nested too deeply
  }
  return {};
}

}  // namespace lm::host
