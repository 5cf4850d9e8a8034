#include "plugin/result.h"

#include <json/json.h>

#include <cmath>

#include "base/c_locale.h"
#include "plugin/detector.h"
#include "plugin/result_text.h"

namespace {

bool isFinite(const boxRect& box) {
  return std::isfinite(box.x) && std::isfinite(box.y) && std::isfinite(box.width) &&
         std::isfinite(box.height);
}

Json::Value describe(const boxRect& box) {
  Json::Value object;
  object["x"] = Json::Value(static_cast<double>(box.x));
  object["y"] = Json::Value(static_cast<double>(box.y));
  object["width"] = Json::Value(static_cast<double>(box.width));
  object["height"] = Json::Value(static_cast<double>(box.height));
  Json::Value names(Json::arrayValue);
  for (const std::string& name : box.names) names.append(Json::Value(name));
  object["inRoi"] = names;
  return object;
}

}  // namespace

void write_query_result_data(const std::vector<boxRect>& boxes, const char* timestamp, Json::Value& root) {
  root["timestamp"] = Json::Value(timestamp);
  Json::Value objects;
  for (const boxRect& box : boxes) {
    if (isFinite(box)) objects.append(describe(box));
  }
  root["object"] = objects;
}

std::string lm::resultText(const std::vector<boxRect>& boxes, const char* timestamp) {
  const CLocaleScope plainNumbers;
  Json::Value root;
  write_query_result_data(boxes, timestamp, root);
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"  // hosts rely on its one-line form
  Json::FastWriter writer;
#pragma GCC diagnostic pop
  const std::string text = writer.write(root);
  return text.substr(0, text.find('\0'));
}

int lightMotion::genRes(const char* timestamp) {
  resText = lm::resultText(objList, timestamp);
  return static_cast<int>(resText.size());
}
