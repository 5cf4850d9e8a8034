#include <json/json.h>

#include "host/check/check.h"

namespace lm::host::check {
namespace {

Json::Value described(const Finding& finding) {
  Json::Value object;
  object["severity"] = name_of(finding.severity);
  object["key"] = finding.key;
  object["line"] = finding.line;
  object["column"] = finding.column;
  object["text"] = finding.text;
  object["hint"] = finding.hint;
  return object;
}

Json::Value described(const Effective& effective) {
  Json::Value object;
  object["thrMatch"] = effective.thr_match;
  object["thrHeuris"] = effective.thr_heuris;
  object["thrIllum"] = effective.thr_illum;
  object["autoSensitivity"] = effective.auto_sensitivity;
  object["lifeStatic"]["seconds"] = effective.life_static_seconds;
  object["lifeStatic"]["frames"] = effective.life_static;
  object["leastBox"]["width"] = effective.least_box_width;
  object["leastBox"]["height"] = effective.least_box_height;
  if (effective.frame.empty()) return object;
  object["frame"]["width"] = effective.frame.width;
  object["frame"]["height"] = effective.frame.height;
  object["leastBoxPixels"]["width"] = effective.least_box_pixels.width;
  object["leastBoxPixels"]["height"] = effective.least_box_pixels.height;
  object["memory"] = Json::UInt64{effective.memory};
  if (effective.watched) object["watched"] = *effective.watched;
  return object;
}

}  // namespace

std::string to_json(const Verdict& verdict) {
  Json::Value root;
  root["findings"] = Json::Value(Json::arrayValue);
  for (const Finding& finding : verdict.findings) root["findings"].append(described(finding));
  root["effective"] = verdict.effective ? described(*verdict.effective) : Json::Value();
  Json::StreamWriterBuilder compact;
  compact["indentation"] = "";
  compact["precision"] = 6;
  return Json::writeString(compact, root);
}

}  // namespace lm::host::check
