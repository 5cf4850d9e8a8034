#include "config/check/outlines.h"

#include <json/json.h>

#include <cmath>
#include <exception>
#include <new>
#include <optional>

#include "config/check/crossing.h"
#include "config/check/findings.h"
#include "config/check/known_keys.h"
#include "config/region_rules.h"

namespace lm::check {
namespace {

constexpr const char* pointExample = R"({"x": "0.25", "y": "0.5"})";
constexpr const char* regionExample = R"({"name": "gate", "points": [{"x": "0.1", "y": "0.2"}, ...]})";

std::string numbered(const std::string& path, Json::ArrayIndex index) {
  return path + '[' + std::to_string(index) + ']';
}

// Coordinates of one region outside the frame, reported as one finding.
class Strays {
 public:
  void lookAt(float value, const std::string& path) {
    constexpr float farAway = 1;  // regions may extend one frame beyond, so that its edge counts as inside
    if (value >= 0 && value <= 1) return;
    const bool near = value >= -farAway && value <= 1 + farAway;
    std::string& first = near ? near_ : far_;
    if (first.empty()) first = path;
    ++(near ? nearCount_ : farCount_);
  }

  void report(Findings& findings) const {
    if (farCount_ > 0) {
      findings.add(
          Severity::warning, far_, "is far outside the frame" + others(farCount_),
          "coordinates are fractions of the frame: 0 is its left or top edge, 1 its right or bottom edge");
    }
    if (nearCount_ > 0) {
      findings.add(Severity::note, near_,
                   "is outside the frame" + others(nearCount_) + "; the region is clipped to the frame");
    }
  }

 private:
  static std::string others(int count) {
    if (count == 1) return "";
    return count == 2 ? ", as is another coordinate of this region"
                      : ", as are " + std::to_string(count - 1) + " other coordinates of this region";
  }

  std::string near_, far_;
  int nearCount_ = 0;
  int farCount_ = 0;
};

std::optional<float> readCoordinate(const Json::Value& point, const std::string& path, const char* axis,
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
          Severity::warning, place, shown(value) + " is read as " + shown(static_cast<double>(number)),
          comma ? "use a decimal point, not a comma" : "write only the number, a fraction of the frame");
    }
    return number;
  } catch (const std::bad_alloc&) {
    throw;
  } catch (const Json::RuntimeError&) {  // of an allocation too
    throw;
  } catch (const std::exception&) {
    findings.add(Severity::error, place,
                 what + "must be a number" + (what.empty() ? ", not " + shown(value) : std::string()) + "; " +
                     findings.who() + " refuses it",
                 "a fraction of the frame, such as \"0.25\"");
  }
  return std::nullopt;
}

std::optional<Corner> readCorner(const Json::Value& point, const std::string& path, Findings& findings) {
  if (!point.isObject()) {
    findings.add(Severity::error, path, shown(point) + " is not a point; " + findings.who() + " refuses it",
                 pointExample);
    return std::nullopt;
  }
  checkKeys(point, path, {"x", "y", "comment"}, findings);
  const std::optional<float> x = readCoordinate(point, path, "x", findings);
  const std::optional<float> y = readCoordinate(point, path, "y", findings);
  return x && y ? std::optional(Corner{*x, *y}) : std::nullopt;
}

void readCorners(const Json::Value& points, Outline& region, Findings& findings) {
  Strays strays;
  for (Json::ArrayIndex i = 0; i < points.size(); ++i) {
    const std::string path = numbered(region.path + ".points", i);
    const std::optional<Corner> corner = readCorner(points[i], path, findings);
    if (!corner) continue;
    region.corners.push_back(*corner);
    strays.lookAt(corner->x, path + ".x");
    strays.lookAt(corner->y, path + ".y");
  }
  strays.report(findings);
  if (region.corners.size() != points.size()) return;
  if (const std::optional<Crossing> crossing = firstCrossing(region.corners)) {
    findings.add(Severity::warning, region.path,
                 "its outline crosses itself, after points " + std::to_string(crossing->first) + " and " +
                     std::to_string(crossing->second) + ": areas enclosed twice are outside",
                 "list the points in order around the region");
  }
}

void readRegion(const Json::Value& value, const lm::RegionList& list, Outline& region, Findings& findings) {
  if (!value.isObject() && !value.isNull()) {
    findings.add(Severity::error, region.path,
                 shown(value) + " is not a region; " + findings.who() + " refuses it", regionExample);
    return;
  }
  if (value.isObject()) checkKeys(value, region.path, {"name", "points", "comment"}, findings);
  const Json::Value& name = value["name"];
  if (name.isString()) {
    region.name = "region " + shown(name);
  } else if (value.isMember("name")) {
    findings.add(Severity::warning, region.path + ".name",
                 shown(name) + " is not a string: the region has no name",
                 "write the name in quotation marks");
  }
  const Json::Value& points = value["points"];
  if (!points.isArray()) {
    findings.add(Severity::warning, region.path, "has no list of points, so it covers nothing",
                 regionExample);
    return;
  }
  if (points.size() < 3) {
    findings.add(Severity::warning, region.path + ".points",
                 "covers nothing: it has " + std::to_string(points.size()) +
                     (points.size() == 1 ? " point" : " points"),
                 "at least three points are required");
  }
  if (points.size() >= list.leastPoints) readCorners(points, region, findings);
}

std::vector<Outline> readList(const Json::Value& regions, const lm::RegionList& list, Findings& findings) {
  std::vector<Outline> outlines;
  for (Json::ArrayIndex i = 0; i < regions.size(); ++i) {
    Outline region{numbered(list.key, i), "the region"};
    readRegion(regions[i], list, region, findings);
    outlines.push_back(std::move(region));
  }
  return outlines;
}

}  // namespace

Outlines readOutlines(const Json::Value& document, Findings& findings) {
  Outlines outlines;
  const Json::Value& included = document[lm::includedRegions.key];
  const Json::Value& excluded = document[lm::excludedRegions.key];
  if (!document.isMember(lm::includedRegions.key)) {
    outlines.wholeFrame = true;
  } else if (included.isArray() && !included.empty()) {
    outlines.included = readList(included, lm::includedRegions, findings);
  } else {
    findings.add(Severity::error, lm::includedRegions.key,
                 "contains no region; " + findings.who() + " refuses the configuration",
                 "remove it to watch the whole frame");
  }
  if (excluded.isArray()) {
    outlines.excluded = readList(excluded, lm::excludedRegions, findings);
  } else if (document.isMember(lm::excludedRegions.key)) {
    findings.add(Severity::warning, lm::excludedRegions.key,
                 shown(excluded) + " is not a list of regions and is ignored",
                 "[" + std::string(regionExample) + "]");
  }
  return outlines;
}

}  // namespace lm::check
