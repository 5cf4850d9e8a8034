// The regions of the configuration document: from JSON arrays to polygons in pixels.
#include <json/json.h>

#include "base/c_locale.h"
#include "config/document.h"
#include "config/json_text.h"
#include "config/region_rules.h"

namespace lm {
namespace {

// Replaces `regions`. A region with too few points keeps its name but no points.
void readList(const Json::Value& root, const FrameSize& size, const RegionList& list,
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
      regions[i].points[k].x = toPixels(std::stof(points[k]["x"].asString()), size.frmW);
      regions[i].points[k].y = toPixels(std::stof(points[k]["y"].asString()), size.frmH);
    }
  }
}

}  // namespace

bool readRegions(const std::string& text, const FrameSize& size, std::vector<polygon>& include,
                 std::vector<polygon>& exclude) {
  Json::Value parsed;
  if (!parseDocument(text, parsed)) return false;
  const Json::Value& root = parsed;
  const CLocaleScope plainNumbers;
  readList(root, size, includedRegions, include);
  readList(root, size, excludedRegions, exclude);
  return true;
}

}  // namespace lm
