#include "gst/regions_text.h"

#include <sstream>
#include <string_view>

namespace lm::gst {
namespace {

std::string trimmed(std::string_view text) {
  constexpr std::string_view blanks = " \t\r\n";
  const std::size_t first = text.find_first_not_of(blanks);
  if (first == std::string_view::npos) return "";
  return std::string(text.substr(first, text.find_last_not_of(blanks) + 1 - first));
}

Json::Value point(const std::string& text) {
  const std::size_t comma = text.find(',');
  if (comma == std::string::npos || comma == 0 || comma + 1 == text.size()) {
    throw BadRegions("regions: \"" + text + "\" is not a point (X,Y without a space between them)");
  }
  Json::Value point(Json::objectValue);
  point["x"] = text.substr(0, comma);
  point["y"] = text.substr(comma + 1);
  return point;
}

Json::Value region(std::string_view text) {
  Json::Value region(Json::objectValue);
  const std::size_t colon = text.find(':');
  region["name"] = colon == std::string_view::npos ? "" : trimmed(text.substr(0, colon));
  Json::Value& points = region["points"] = Json::Value(Json::arrayValue);
  std::istringstream words(std::string(colon == std::string_view::npos ? text : text.substr(colon + 1)));
  for (std::string word; words >> word;) points.append(point(word));
  return region;
}

}  // namespace

void setRegions(Json::Value& document, const std::string& text) {
  document.removeMember("roi");
  document.removeMember("ror");
  std::istringstream parts(text);
  for (std::string part; std::getline(parts, part, ';');) {
    part = trimmed(part);
    if (part.empty()) continue;
    const bool excluded = part.front() == '!';
    document[excluded ? "ror" : "roi"].append(region(excluded ? part.substr(1) : part));
  }
}

}  // namespace lm::gst
