#include "host/document.h"

#include <json/json.h>

#include <algorithm>
#include <memory>
#include <stdexcept>

namespace lm::host {
namespace {

// One line from jsoncpp's "* Line 1, Column 3\n  Syntax error: ...\n", which goes on with every error that
// follows.
std::string first_error(const std::string& report) {
  const std::size_t place = report.find_first_not_of("* ");
  const std::size_t end_of_place = std::min(report.find('\n'), report.size());
  const std::size_t cause = report.find_first_not_of(" \n", end_of_place);
  if (place == std::string::npos || cause == std::string::npos) return report;
  return report.substr(place, end_of_place - place) + ": " +
         report.substr(cause, std::min(report.find('\n', cause), report.size()) - cause);
}

Json::Value parse(const std::string& text) {
  Json::CharReaderBuilder settings;
  settings["collectComments"] = false;
  settings["failIfExtra"] = true;
  const std::unique_ptr<Json::CharReader> reader(settings.newCharReader());
  Json::Value root;
  std::string report;
  bool parsed = false;
  try {
    parsed = reader->parse(text.data(), text.data() + text.size(), &root, &report);
  } catch (const Json::Exception&) {
    throw std::invalid_argument("nested too deeply");
  }
  if (!parsed) throw std::invalid_argument("not JSON: " + first_error(report));
  if (!root.isObject()) throw std::invalid_argument("not a JSON object");
  return root;
}

// "640" for the text "640", for the number 640 and for a size that is left out; the plug-in reads texts only.
// A text that holds no number stays, for the plug-in to refuse.
void settle_size(Json::Value& document, const char* key, int actual) {
  Json::Value& stated = document[key];
  int value = actual;
  try {
    if (stated.isString()) value = std::stoi(stated.asString());
    if (stated.isIntegral()) value = stated.asInt();
  } catch (const std::exception&) {
    return;
  }
  if (value != actual) {
    throw std::invalid_argument('"' + std::string(key) + "\" is " + std::to_string(value) +
                                " but the source's frames have " + std::to_string(actual));
  }
  if (!stated.isString()) stated = std::to_string(actual);
}

// From one frame width left of the frame: the plug-in does not count a region's left edge as inside.
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

std::string default_document() {
  return R"({"sensitivity": "4", "lcAdap": "3", "minBoxW": "0.02", "minBoxH": "0.05"})";
}

std::string complete_document(const std::string& text, cv::Size frame) {
  Json::Value document = parse(text);
  settle_size(document, "frmW", frame.width);
  settle_size(document, "frmH", frame.height);
  settle_size(document, "frmChn", 3);
  if (!document.isMember("roi")) document["roi"] = whole_frame();
  Json::StreamWriterBuilder compact;
  compact["indentation"] = "";
  return Json::writeString(compact, document);
}

}  // namespace lm::host
