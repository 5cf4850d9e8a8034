#include "host/detector/document.h"

#include <json/json.h>

#include <algorithm>
#include <iterator>
#include <stdexcept>
#include <string_view>

#include "config/check/findings.h"
#include "config/check/known_keys.h"
#include "host/base/json_text.h"
#include "host/detector/adapt.h"
#include "host/detector/presets/presets.h"

namespace lm::host::detector {
namespace {

const cv::Size kAnySize(640, 360);

// A text without a number is kept; the plug-in refuses it.
void settle_size(Json::Value& document, const char* key, int actual, bool binding = true) {
  Json::Value& stated = document[key];
  int value = actual;
  try {
    if (stated.isString()) value = std::stoi(stated.asString());
  } catch (const std::exception&) {
    return;
  }
  if (value != actual && binding) {
    throw std::invalid_argument('"' + std::string(key) + "\" is " + std::to_string(value) +
                                " but the source's frames have " + std::to_string(actual));
  }
  if (!stated.isString()) stated = std::to_string(value);
}

// Starts one frame width left of the frame, because the plug-in does not count a region's left edge as
// inside.
Json::Value whole_frame() {
  Json::Value region;
  region["name"] = "frame";
  for (const auto& [x, y] : {std::pair{"-1", "0"}, {"1", "0"}, {"1", "1"}, {"-1", "1"}}) {
    Json::Value point;
    point["x"] = x;
    point["y"] = y;
    region["points"].append(point);
  }
  Json::Value regions(Json::arrayValue);
  regions.append(region);
  return regions;
}

}  // namespace

std::string about(const Document& document, const std::string& cause) {
  return document.name.empty() ? cause : document.name + ": " + cause;
}

Document preset_document(const std::string& name) {
  return {"the preset " + name, presets::find_preset(name)->document};
}

Document default_document(const std::string& plugin) {
  return preset_document(plugin.empty() ? "auto" : "street");
}

std::string plugin_document(const std::string& text, cv::Size frame) {
  Json::Value document = readDocument(text);
  if (adapts(document))
    throw std::invalid_argument("\"adapt\" cannot be used with --plugin: plug-ins do not adapt");
  document.removeMember("adapt");
  document.removeMember("format");  // that of the frames, or it has been refused
  for (const std::string& key : document.getMemberNames()) {
    if (document[key].isNull()) {
      document.removeMember(key);
      continue;
    }
    if (std::ranges::find(lm::check::handleKeys, std::string_view(key)) != std::end(lm::check::handleKeys)) {
      throw std::invalid_argument('"' + key + "\" cannot be used with --plugin: plug-ins do not know it");
    }
    if (document[key].isNumeric()) document[key] = lm::check::numberText(document[key]);
  }
  const cv::Size size = frame.empty() ? kAnySize : frame;
  settle_size(document, "frmW", size.width, !frame.empty());
  settle_size(document, "frmH", size.height, !frame.empty());
  settle_size(document, "frmChn", 3);
  if (!document.isMember("roi")) document["roi"] = whole_frame();
  return base::verbatim_json(document);
}

}  // namespace lm::host::detector
