// The scalar settings of the configuration document: from JSON members to the parameter list.
#include <json/json.h>

#include <cstdio>

#include "config/json_text.h"
#include "engine/c_locale.h"
#include "plugin/detector.h"

namespace {

struct ScalarKey {
  const char* name;
  std::int32_t lightMotion::*field;  // where the detector keeps the value as well, or null
};

// In the order of the parameter list.
constexpr ScalarKey scalarKeys[] = {
    {"frmW", &lightMotion::frmW}, {"frmH", &lightMotion::frmH}, {"frmChn", &lightMotion::frmChn},
    {"sensitivity", nullptr},     {"lcAdap", nullptr},          {"minBoxW", nullptr},
    {"minBoxH", nullptr},         {"maxBoxW", nullptr},         {"maxBoxH", nullptr},
    {"lifeStatic", nullptr},
};

}  // namespace

std::vector<std::string> lightMotion::myjsonReader(std::string config) {
  std::vector<std::string> entries;
  Json::Value parsed;
  if (!lm::parseDocument(config, parsed)) {
    std::printf("Error: json configuration is incorrect format \n");
    return entries;
  }
  const Json::Value& root = parsed;
  const lm::CLocaleScope plainNumbers;
  for (const ScalarKey& key : scalarKeys) {
    const Json::Value& member = root[key.name];
    if (!member.isString()) continue;
    const std::string value = member.asString();
    entries.push_back(std::string(key.name) + " " + value);
    if (key.field != nullptr) this->*key.field = std::stoi(value);
  }
  return entries;
}
