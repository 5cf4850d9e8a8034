#include "host/detector/document.h"

#include <json/json.h>

#include <stdexcept>

#include "host/base/json_text.h"
#include "host/detector/presets/presets.h"

namespace lm::host::detector {
namespace {

const cv::Size kAnySize(640, 360);

// "640" for the text "640", for the number 640 and for an omitted size, because the plug-in reads only texts.
// A text without a number is kept; the plug-in refuses it.
void settle_size(Json::Value& document, const char* key, int actual, bool binding = true) {
  Json::Value& stated = document[key];
  int value = actual;
  try {
    if (stated.isString()) value = std::stoi(stated.asString());
    if (stated.isIntegral()) value = stated.asInt();
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

std::string default_document() { return presets::find_preset("street")->document; }

std::string complete_document(const std::string& text, cv::Size frame) {
  Json::Value document = readDocument(text);
  const cv::Size size = frame.empty() ? kAnySize : frame;
  settle_size(document, "frmW", size.width, !frame.empty());
  settle_size(document, "frmH", size.height, !frame.empty());
  settle_size(document, "frmChn", 3);
  if (!document.isMember("roi")) document["roi"] = whole_frame();
  return base::verbatim_json(document);
}

}  // namespace lm::host::detector
