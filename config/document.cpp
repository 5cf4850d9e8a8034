// The scalar settings of the configuration document: from JSON members to the parameter list.
#include <json/json.h>

#include <cstdio>

#include "base/c_locale.h"
#include "config/json_text.h"
#include "config/scalar_keys.h"
#include "plugin/detector.h"

std::vector<std::string> lightMotion::myjsonReader(std::string config) {
  std::vector<std::string> entries;
  Json::Value parsed;
  if (!lm::parseDocument(config, parsed)) {
    std::printf("Error: json configuration is incorrect format \n");
    return entries;
  }
  const Json::Value& root = parsed;
  const lm::CLocaleScope plainNumbers;
  for (const lm::ScalarKey<lightMotion>& key : lm::scalarKeys<lightMotion>) {
    const Json::Value& member = root[key.name];
    if (!member.isString()) continue;
    const std::string value = member.asString();
    entries.push_back(std::string(key.name) + " " + value);
    if (key.field != nullptr) this->*key.field = std::stoi(value);
  }
  return entries;
}
