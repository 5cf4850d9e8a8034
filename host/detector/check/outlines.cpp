#include "host/detector/check/outlines.h"

#include <json/json.h>

#include <cmath>
#include <exception>
#include <optional>

#include "config/region_rules.h"
#include "host/detector/check/crossing.h"
#include "host/detector/check/findings.h"
#include "host/detector/check/known_keys.h"

namespace lm::host::detector::check {
namespace {

constexpr const char* kPoint = R"({"x": "0.25", "y": "0.5"})";
constexpr const char* kRegion = R"({"name": "gate", "points": [{"x": "0.1", "y": "0.2"}, ...]})";

std::string numbered(const std::string& path, Json::ArrayIndex index) {
  return path + '[' + std::to_string(index) + ']';
}

// Coordinates of one region outside the frame, reported as one finding.
class Strays {
 public:
  void look_at(float value, const std::string& path) {
    constexpr float kFar = 1;  // regions may extend one frame beyond, so that its edge counts as inside
    if (value >= 0 && value <= 1) return;
    const bool near = value >= -kFar && value <= 1 + kFar;
    std::string& first = near ? near_ : far_;
    if (first.empty()) first = path;
    ++(near ? near_count_ : far_count_);
  }

  void report(Findings& findings) const {
    if (far_count_ > 0) {
      findings.add(
          Severity::kWarning, far_, "is far outside the frame" + others(far_count_),
          "coordinates are fractions of the frame: 0 is its left or top edge, 1 its right or bottom edge");
    }
    if (near_count_ > 0) {
      findings.add(Severity::kNote, near_,
                   "is outside the frame" + others(near_count_) + "; the region is clipped to the frame");
    }
  }

 private:
  static std::string others(int count) {
    if (count == 1) return "";
    return count == 2 ? ", as is another coordinate of this region"
                      : ", as are " + std::to_string(count - 1) + " other coordinates of this region";
  }

  std::string near_, far_;
  int near_count_ = 0;
  int far_count_ = 0;
};

std::optional<float> read_coordinate(const Json::Value& point, const std::string& path, const char* axis,
                                     Findings& findings) {
  const std::string place = point.isMember(axis) ? path + '.' + axis : path;
  const Json::Value& value = point[axis];
  const std::string what = point.isMember(axis) ? "" : std::string("\"") + axis + "\" is missing: it ";
  try {
    const std::string text = value.asString();
    std::size_t used = 0;
    const float number = std::stof(text, &used);
    if (text.find_first_not_of(" \t\n\v\f\r", used) != std::string::npos) {
      const bool comma = text[used] == ',';
      findings.add(
          Severity::kWarning, place, shown(value) + " is read as " + shown(static_cast<double>(number)),
          comma ? "use a decimal point, not a comma" : "write only the number, a fraction of the frame");
    }
    return number;
  } catch (const std::exception&) {
    findings.add(Severity::kError, place,
                 what + "must be a number" + (what.empty() ? ", not " + shown(value) : std::string()) +
                     "; the plug-in refuses it",
                 "a fraction of the frame, such as \"0.25\"");
  }
  return std::nullopt;
}

std::optional<Corner> read_corner(const Json::Value& point, const std::string& path, Findings& findings) {
  if (!point.isObject()) {
    findings.add(Severity::kError, path, shown(point) + " is not a point; the plug-in refuses it", kPoint);
    return std::nullopt;
  }
  check_keys(point, path, {"x", "y", "comment"}, findings);
  const std::optional<float> x = read_coordinate(point, path, "x", findings);
  const std::optional<float> y = read_coordinate(point, path, "y", findings);
  return x && y ? std::optional(Corner{*x, *y}) : std::nullopt;
}

void read_corners(const Json::Value& points, Outline& region, Findings& findings) {
  Strays strays;
  for (Json::ArrayIndex i = 0; i < points.size(); ++i) {
    const std::string path = numbered(region.path + ".points", i);
    const std::optional<Corner> corner = read_corner(points[i], path, findings);
    if (!corner) continue;
    region.corners.push_back(*corner);
    strays.look_at(corner->x, path + ".x");
    strays.look_at(corner->y, path + ".y");
  }
  strays.report(findings);
  if (region.corners.size() != points.size()) return;
  if (const std::optional<Crossing> crossing = first_crossing(region.corners)) {
    findings.add(Severity::kWarning, region.path,
                 "its outline crosses itself, after points " + std::to_string(crossing->first) + " and " +
                     std::to_string(crossing->second) + ": areas enclosed twice are outside",
                 "list the points in order around the region");
  }
}

void read_region(const Json::Value& value, const lm::RegionList& list, Outline& region, Findings& findings) {
  if (!value.isObject() && !value.isNull()) {
    findings.add(Severity::kError, region.path, shown(value) + " is not a region; the plug-in refuses it",
                 kRegion);
    return;
  }
  if (value.isObject()) check_keys(value, region.path, {"name", "points", "comment"}, findings);
  const Json::Value& name = value["name"];
  if (name.isString()) {
    region.name = "region " + shown(name);
  } else if (value.isMember("name")) {
    findings.add(Severity::kWarning, region.path + ".name",
                 shown(name) + " is not a string: the region has no name",
                 "write the name in quotation marks");
  }
  const Json::Value& points = value["points"];
  if (!points.isArray()) {
    findings.add(Severity::kWarning, region.path, "has no list of points, so it covers nothing", kRegion);
    return;
  }
  if (points.size() < 3) {
    findings.add(Severity::kWarning, region.path + ".points",
                 "covers nothing: it has " + std::to_string(points.size()) +
                     (points.size() == 1 ? " point" : " points"),
                 "at least three points are required");
  }
  if (points.size() >= list.leastPoints) read_corners(points, region, findings);
}

std::vector<Outline> read_list(const Json::Value& regions, const lm::RegionList& list, Findings& findings) {
  std::vector<Outline> outlines;
  for (Json::ArrayIndex i = 0; i < regions.size(); ++i) {
    Outline region{numbered(list.key, i), "the region"};
    read_region(regions[i], list, region, findings);
    outlines.push_back(std::move(region));
  }
  return outlines;
}

}  // namespace

Outlines read_outlines(const Json::Value& document, Findings& findings) {
  Outlines outlines;
  const Json::Value& included = document[lm::includedRegions.key];
  const Json::Value& excluded = document[lm::excludedRegions.key];
  if (!document.isMember(lm::includedRegions.key)) {
    outlines.whole_frame = true;
  } else if (included.isArray() && !included.empty()) {
    outlines.included = read_list(included, lm::includedRegions, findings);
  } else {
    findings.add(Severity::kError, lm::includedRegions.key,
                 "contains no region; the plug-in refuses the configuration",
                 "remove it to watch the whole frame");
  }
  if (excluded.isArray()) {
    outlines.excluded = read_list(excluded, lm::excludedRegions, findings);
  } else if (document.isMember(lm::excludedRegions.key)) {
    findings.add(Severity::kWarning, lm::excludedRegions.key,
                 shown(excluded) + " is not a list of regions and is ignored",
                 "[" + std::string(kRegion) + "]");
  }
  return outlines;
}

}  // namespace lm::host::detector::check
