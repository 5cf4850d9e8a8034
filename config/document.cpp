#include "config/document.h"

#include <json/json.h>

#include "base/c_locale.h"
#include "config/json_text.h"
#include "config/scalar_keys.h"

namespace lm {
namespace {

std::string invalidSizeMessage(const FrameSize& size) {
  return "Error: invalid parameter[frmChn:" + std::to_string(size.frmChn) +
         ",frmW:" + std::to_string(size.frmW) + ",frmH:" + std::to_string(size.frmH) + "] \n";
}

}  // namespace

bool readScalars(const std::string& text, FrameSize& size, std::vector<std::string>& parameters) {
  parameters.clear();
  Json::Value parsed;
  if (!parseDocument(text, parsed)) return false;
  const Json::Value& root = parsed;
  const CLocaleScope plainNumbers;
  for (const ScalarKey<FrameSize>& key : scalarKeys<FrameSize>) {
    const Json::Value& member = root[key.name];
    if (!member.isString()) continue;
    const std::string value = member.asString();
    parameters.push_back(std::string(key.name) + " " + value);
    if (key.field != nullptr) size.*key.field = std::stoi(value);
  }
  return true;
}

bool readConfiguration(const std::string& text, FrameSize& size, Configuration& configuration) {
  configuration = {};
  if (!readScalars(text, size, configuration.parameters)) configuration.messages = notJsonMessage;
  if (size.frmChn < 1 || size.frmW < 1 || size.frmH < 1) {
    configuration.messages += invalidSizeMessage(size);
    return false;
  }
  readRegions(text, size, configuration.include, configuration.exclude);
  if (configuration.include.empty()) {
    configuration.messages += "Error: region of interest is empty! \n";
    return false;
  }
  return true;
}

}  // namespace lm
