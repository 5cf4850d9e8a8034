#include "host/detector/regions.h"

#include <algorithm>

#include "host/base/json_text.h"

namespace lm::host::detector {
namespace {

// As the detector reads it: up to the first character that is not part of the number.
double coordinate(const Json::Value& value) {
  try {
    return std::stof(value.asString());
  } catch (const std::exception&) {
    return 0;
  }
}

std::vector<Region> regions_of(const Json::Value& list) {
  std::vector<Region> regions;
  if (!list.isArray()) return regions;
  for (const Json::Value& item : list) {
    if (!item.isObject()) continue;
    Region region;
    if (item["name"].isString()) region.name = item["name"].asString();
    for (const Json::Value& point : item["points"]) {
      if (point.isObject()) region.corners.emplace_back(coordinate(point["x"]), coordinate(point["y"]));
    }
    regions.push_back(std::move(region));
  }
  return regions;
}

Region frame_region() { return {"frame", {{0, 0}, {1, 0}, {1, 1}, {0, 1}}}; }

// Names once each, of the regions that `counts` accepts.
template <typename Counts>
std::vector<std::string> names_of(const std::vector<Region>& regions, Counts counts) {
  std::vector<std::string> names;
  for (const Region& region : regions) {
    if (std::ranges::find(names, region.name) == names.end() && counts(region)) names.push_back(region.name);
  }
  return names;
}

}  // namespace

bool Region::contains(cv::Point2d point) const {
  bool inside = false;
  for (std::size_t i = 0; i < corners.size(); ++i) {
    const cv::Point2d a = corners[i];
    const cv::Point2d b = corners[(i + 1) % corners.size()];
    if ((a.y > point.y) == (b.y > point.y)) continue;
    if (point.x < a.x + (point.y - a.y) / (b.y - a.y) * (b.x - a.x)) inside = !inside;
  }
  return inside;
}

Regions::Regions(const std::string& document) {
  const Json::Value root = base::parse_json(document);
  if (!root.isObject()) return;
  included_ = root["roi"].isNull() ? std::vector<Region>{frame_region()} : regions_of(root["roi"]);
  excluded_ = regions_of(root["ror"]);
}

bool Regions::excluded_at(cv::Point2d point) const {
  return std::any_of(excluded_.begin(), excluded_.end(), [&](const Region& r) { return r.contains(point); });
}

bool Regions::watched(cv::Point2d point) const {
  return !excluded_at(point) &&
         std::any_of(included_.begin(), included_.end(), [&](const Region& r) { return r.contains(point); });
}

bool Regions::touches(const Region& region, const cv::Rect2d& box) const {
  constexpr int kSteps = 16;  // across and down
  const cv::Rect2d part = box & cv::Rect2d(0, 0, 1, 1);
  for (int row = 0; row < kSteps; ++row) {
    for (int column = 0; column < kSteps; ++column) {
      const cv::Point2d point(part.x + part.width * (column + 0.5) / kSteps,
                              part.y + part.height * (row + 0.5) / kSteps);
      if (region.contains(point) && !excluded_at(point)) return true;
    }
  }
  return false;
}

std::vector<std::string> Regions::names() const {
  return names_of(included_, [](const Region&) { return true; });
}

std::vector<std::string> Regions::touched(const cv::Rect2d& box) const {
  return names_of(included_, [&](const Region& region) { return touches(region, box); });
}

}  // namespace lm::host::detector
