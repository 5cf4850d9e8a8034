// The regions of the configuration document: from JSON arrays to polygons in pixels.
#include <json/json.h>

#include "config/json_text.h"
#include "engine/c_locale.h"
#include "engine/rules.h"
#include "plugin/detector.h"

namespace {

// A coordinate: a fraction of `side`, in pixels. Not clamped to the frame.
std::int32_t toPixels(const Json::Value& fraction, std::int32_t side) {
  return lm::toInt32(static_cast<float>(side) * std::stof(fraction.asString()));
}

// Replaces `regions` by those of `array`. A region with fewer than `minVertices` points keeps its name but no
// points.
void readRegions(const Json::Value& array, const lightMotion& detector, Json::ArrayIndex minVertices,
                 std::vector<polygon>& regions) {
  regions.clear();
  if (!array.isArray()) return;
  regions.resize(array.size());
  for (Json::ArrayIndex i = 0; i < array.size(); ++i) {
    const Json::Value& name = array[i]["name"];
    if (name.isString()) regions[i].name = name.asString();
    const Json::Value& points = array[i]["points"];
    if (!points.isArray() || points.size() < minVertices) continue;
    regions[i].points.resize(points.size());
    for (Json::ArrayIndex k = 0; k < points.size(); ++k) {
      regions[i].points[k].x = toPixels(points[k]["x"], detector.frmW);
      regions[i].points[k].y = toPixels(points[k]["y"], detector.frmH);
    }
  }
}

}  // namespace

bool lightMotion::jsonReaderRoi(std::string config, std::vector<polygon>& include,
                                std::vector<polygon>& exclude) {
  Json::Value parsed;
  if (!lm::parseDocument(config, parsed)) return false;
  const Json::Value& root = parsed;
  const lm::CLocaleScope plainNumbers;
  readRegions(root["roi"], *this, 3, include);
  // Kept: an exclusion region takes its points however few they are.
  readRegions(root["ror"], *this, 0, exclude);
  return true;
}
