#include "host/detector/adapt.h"

#include "host/base/json_text.h"
#include "host/detector/analysis_size.h"
#include "host/detector/clutter.h"
#include "host/detector/document.h"
#include "host/detector/noise.h"
#include "host/detector/presets/presets.h"

namespace lm::host::detector {

bool sets(const Json::Value& document, const std::string& key) {
  return document.isMember(key) && !document[key].isNull();
}

bool adapts(const Json::Value& document) {
  return document.isObject() && document["adapt"].isBool() && document["adapt"].asBool();
}

bool adapts(const std::string& text) {
  try {
    return adapts(readDocument(text));
  } catch (const NoDocument&) {
    return false;
  }
}

Json::Value completed(Json::Value document) {
  Json::Value choices = readDocument(presets::find_preset("auto")->document);
  choices.removeMember("comment");
  choices["sensitivity"] = NoiseRule().sensitivity();
  choices["peel"] = ClutterRule().peel();
  for (const std::string& key : choices.getMemberNames()) {
    const bool replaced = key == "absorb_seconds" && sets(document, "lifeStatic");
    if (!sets(document, key) && !replaced) document[key] = choices[key];
  }
  return document;
}

cv::Size analysed_size(const std::string& text, cv::Size source, const source::live::Scale& scale) {
  if (scale.given || !adapts(text)) return scale.of(source);
  const Json::Value document = readDocument(text);
  return sets(document, "frmW") || sets(document, "frmH") ? source : analysis_size(source);
}

}  // namespace lm::host::detector
