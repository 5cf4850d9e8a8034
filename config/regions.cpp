// The regions of the configuration document: from JSON arrays to polygons in pixels.
#include <json/json.h>

#include "base/c_locale.h"
#include "config/json_text.h"
#include "config/region_rules.h"
#include "plugin/detector.h"

namespace {

// Replaces `regions` by those of the document. A region with too few points keeps its name but no points.
void readRegions(const Json::Value& root, const lightMotion& detector, const lm::RegionList& list,
                 std::vector<polygon>& regions) {
  regions.clear();
  const Json::Value& array = root[list.key];
  if (!array.isArray()) return;
  regions.resize(array.size());
  for (Json::ArrayIndex i = 0; i < array.size(); ++i) {
    const Json::Value& name = array[i]["name"];
    if (name.isString()) regions[i].name = name.asString();
    const Json::Value& points = array[i]["points"];
    if (!points.isArray() || points.size() < list.leastPoints) continue;
    regions[i].points.resize(points.size());
    for (Json::ArrayIndex k = 0; k < points.size(); ++k) {
      regions[i].points[k].x = lm::toPixels(std::stof(points[k]["x"].asString()), detector.frmW);
      regions[i].points[k].y = lm::toPixels(std::stof(points[k]["y"].asString()), detector.frmH);
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
  readRegions(root, *this, lm::includedRegions, include);
  readRegions(root, *this, lm::excludedRegions, exclude);
  return true;
}
