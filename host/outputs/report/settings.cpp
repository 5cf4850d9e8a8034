#include "host/outputs/report/settings.h"

#include "host/base/json_text.h"
#include "host/base/time_text.h"

namespace lm::host::outputs::report {
namespace {

std::string names_of(const Json::Value& regions) {
  std::string names;
  for (const Json::Value& region : regions) {
    if (!region.isObject()) continue;
    const std::string name = region["name"].isString() ? region["name"].asString() : "(no name)";
    names += (names.empty() ? "" : ", ") + name;
  }
  return names;
}

std::string in_seconds(double value) {
  return base::seconds_text(std::chrono::microseconds(std::int64_t(value * 1e6))) + " s";
}

}  // namespace

std::vector<std::pair<std::string, std::string>> shown_settings(const std::string& document,
                                                                const events::EventRules& rules) {
  std::vector<std::pair<std::string, std::string>> shown{
      {"Minimum length of an event", in_seconds(rules.min_event)},
      {"Quiet time that ends an event", in_seconds(rules.gap)}};
  const Json::Value root = base::parse_json(document);
  if (!root.isObject()) return shown;
  for (const std::string& key : root.getMemberNames()) {
    const Json::Value& value = root[key];
    if (value.isArray()) {
      if (std::string names = names_of(value); !names.empty()) shown.emplace_back(key, names);
    } else if (!value.isObject()) {
      shown.emplace_back(key, value.asString());
    }
  }
  return shown;
}

}  // namespace lm::host::outputs::report
