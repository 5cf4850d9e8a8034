#include "gst/configuration.h"

#include <json/json.h>

#include <memory>

#include "gst/regions_text.h"

namespace lm::gst {
namespace {

std::optional<Json::Value> parsed(const std::string& text) {
  Json::CharReaderBuilder settings;
  settings["collectComments"] = false;
  settings["failIfExtra"] = true;
  const std::unique_ptr<Json::CharReader> reader(settings.newCharReader());
  Json::Value value;
  try {
    if (reader->parse(text.data(), text.data() + text.size(), &value, nullptr) && value.isObject())
      return value;
  } catch (const Json::Exception&) {  // nested too deeply
  }
  return std::nullopt;
}

std::string written(const Json::Value& value) {
  Json::StreamWriterBuilder settings;
  settings["indentation"] = "";
  return Json::writeString(settings, value);
}

// The shortest text that reads as the number, in every locale.
std::string numberText(double number) {
  char text[G_ASCII_DTOSTR_BUF_SIZE];
  for (const char* format : {"%.6g", "%.17g"}) {
    g_ascii_formatd(text, sizeof text, format, number);
    if (g_ascii_strtod(text, nullptr) == number) break;
  }
  return text;
}

void replace(Json::Value& document, const Json::Value& with) {
  for (const std::string& key : with.getMemberNames()) document[key] = with[key];
}

Json::Value ofProperties(const Settings& settings) {
  Json::Value document(Json::objectValue);
  if (settings.sensitivity != 0) document["sensitivity"] = settings.sensitivity;
  if (settings.minBox > 0) document["minBoxW"] = document["minBoxH"] = numberText(settings.minBox);
  if (settings.absorb != 0) {
    document["absorb_seconds"] = settings.absorb == -1 ? "forever" : numberText(settings.absorb);
  }
  return document;
}

}  // namespace

Configuration configurationOf(const Settings& settings, const std::string& fileText) {
  Json::Value document(Json::objectValue);
  std::string only = "{}";  // the text that all keys are from
  for (const std::string& text : {fileText, settings.config}) {
    if (text.empty()) continue;
    const std::optional<Json::Value> part = parsed(text);
    if (!part) return {text, std::nullopt};
    only = document.empty() ? text : "";
    replace(document, *part);
  }
  const Json::Value properties = ofProperties(settings);
  replace(document, properties);
  if (!settings.regions.empty()) setRegions(document, settings.regions);
  // A text as it was given keeps its line numbers for the library's messages.
  const bool asGiven = !only.empty() && properties.empty() && settings.regions.empty();
  return {asGiven ? only : written(document), document};
}

std::string changesBetween(const Json::Value& from, const Json::Value& to) {
  Json::Value changes(Json::objectValue);
  for (const std::string& key : from.getMemberNames()) {
    if (!to.isMember(key)) changes[key] = Json::Value();
  }
  for (const std::string& key : to.getMemberNames()) {
    if (!from.isMember(key) || from[key] != to[key]) changes[key] = to[key];
  }
  return written(changes);
}

}  // namespace lm::gst
