#include "host/base/json_text.h"
#include "host/detector/check/check.h"

namespace lm::host::detector::check {
namespace {

Json::Value size_value(cv::Size size) {
  Json::Value object;
  object["width"] = size.width;
  object["height"] = size.height;
  return object;
}

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
  object["match_threshold"] = effective.thr_match;
  object["change_threshold"] = effective.thr_heuris;
  object["lighting_threshold"] = effective.thr_illum;
  object["auto_sensitivity"] = effective.auto_sensitivity;
  object["static_lifetime"] = effective.life_static_seconds;
  object["static_lifetime_frames"] = effective.life_static;
  object["extent"] = effective.extent;
  object["peel"] = effective.peeled;
  object["adapts"] = Json::arrayValue;
  for (const std::string& key : effective.adapts) object["adapts"].append(key);
  object["min_box"]["width"] = effective.min_box_width;
  object["min_box"]["height"] = effective.min_box_height;
  if (effective.frame.empty()) return object;
  object["frame_size"] = size_value(effective.frame);
  object["min_box_pixels"] = size_value(effective.min_box_pixels);
  object["memory"] = Json::UInt64{effective.memory};
  if (effective.watched) object["watched_share"] = *effective.watched;
  return object;
}

}  // namespace

std::string to_json(const Verdict& verdict) {
  Json::Value root;
  root["findings"] = Json::Value(Json::arrayValue);
  for (const Finding& finding : verdict.findings) root["findings"].append(described(finding));
  root["effective"] = verdict.effective ? described(*verdict.effective) : Json::Value();
  return base::json_text(root);
}

}  // namespace lm::host::detector::check
