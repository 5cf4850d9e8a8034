#include "host/document_faults.h"

#include <json/json.h>

#include <exception>
#include <sstream>

namespace lm::host {
namespace {

enum Kind { kWhole, kFraction, kUnused };

constexpr struct {
  const char* key;
  Kind kind;
} kSettings[] = {{"frmW", kWhole},        {"frmH", kWhole},     {"frmChn", kWhole},
                 {"sensitivity", kWhole}, {"lcAdap", kWhole},   {"minBoxW", kFraction},
                 {"minBoxH", kFraction},  {"maxBoxW", kUnused}, {"maxBoxH", kUnused},
                 {"lifeStatic", kWhole}};

Json::Value parse(const std::string& document) {
  Json::Value root;
  std::istringstream(document) >> root;
  return root;
}

std::string quoted(const std::string& text) { return '"' + text + '"'; }

bool converts(const std::string& text, Kind kind) {
  try {
    if (kind == kWhole) static_cast<void>(std::stoi(text));
    if (kind == kFraction) static_cast<void>(std::stof(text));
    return true;
  } catch (const std::exception&) {
    return false;
  }
}

std::string faulty_scalar(const Json::Value& root) {
  for (const auto& [key, kind] : kSettings) {
    const Json::Value& value = root[key];
    if (value.isString() && !converts(value.asString(), kind)) {
      return quoted(key) + " must be a " + (kind == kWhole ? "whole " : "") + "number, not " +
             quoted(value.asString());
    }
  }
  return "";
}

std::string faulty_point(const Json::Value& point) {
  if (!point.isObject()) return "a point that is no JSON object";
  for (const char* axis : {"x", "y"}) {
    const Json::Value& value = point[axis];
    if (!value.isConvertibleTo(Json::stringValue) || !converts(value.asString(), kFraction)) {
      return std::string("a point whose ") + quoted(axis) + " is no number";
    }
  }
  return "";
}

std::string faulty_region(const Json::Value& region) {
  if (!region.isObject()) return "a region that is no JSON object";
  if (!region["points"].isArray()) return "";
  for (const Json::Value& point : region["points"]) {
    std::string fault = faulty_point(point);
    if (!fault.empty()) return fault;
  }
  return "";
}

}  // namespace

std::string faulty_setting(const std::string& document) {
  const Json::Value root = parse(document);
  std::string fault = faulty_scalar(root);
  for (const char* list : {"roi", "ror"}) {
    if (!fault.empty() || !root[list].isArray()) continue;
    for (const Json::Value& region : root[list]) {
      if (fault.empty()) fault = faulty_region(region);
    }
    if (!fault.empty()) fault.insert(0, quoted(list) + " holds ");
  }
  return fault;
}

std::vector<std::string> ignored_settings(const std::string& document) {
  const Json::Value root = parse(document);
  std::vector<std::string> ignored;
  for (const auto& [key, kind] : kSettings) {
    if (root.isMember(key) && !root[key].isString()) {
      ignored.push_back(quoted(key) + " has no effect, because its value is no text such as \"5\"");
    }
  }
  return ignored;
}

}  // namespace lm::host
