#include "config/handle_document.h"

#include <json/json.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>
#include <limits>
#include <utility>

#include "config/check/findings.h"
#include "config/check/known_keys.h"
#include "config/check/min_box.h"
#include "config/check/outlines.h"
#include "config/check/scalars.h"
#include "config/param_entry.h"
#include "config/region_rules.h"
#include "engine/rules.h"

namespace lm {
namespace {

using check::Findings;
using check::Severity;
using check::shown;

constexpr double leastAbsorption = 0.1;  // seconds
constexpr double longestAbsorption = 86400;
constexpr int mostPeeled = 3;

constexpr std::array<std::pair<const char*, Extent>, 3> extentNames{
    {{"core", Extent::core}, {"full", Extent::full}, {"object", Extent::object}}};

std::string quoted(const std::string& text) { return '"' + text + '"'; }

std::string formatNames() {
  std::string names;
  for (const FormatRow& row : formatTable) names.append(names.empty() ? "" : ", ").append(quoted(row.name));
  return names;
}

// The whole number of a value, or none and a finding. `isSize`: what follows the number in a text is reported
// elsewhere.
std::optional<std::int32_t> wholeNumber(const Json::Value& value, const std::string& key, const char* right,
                                        bool isSize, Findings& findings) {
  try {
    if (value.isString() || value.isInt()) {
      const std::string text = check::numberText(value);
      std::size_t used = 0;
      const auto number = static_cast<std::int32_t>(convertParam(Conversion::integer, text, &used));
      if (isSize || used == text.size()) return number;
    }
  } catch (const std::logic_error&) {  // of std::stoi
  }
  findings.add(Severity::error, key, "must be a whole number, not " + shown(value), right);
  return std::nullopt;
}

std::int32_t readSide(const Json::Value& document, const char* key, std::int32_t known, bool required,
                      Findings& findings) {
  if (!document.isMember(key)) {
    if (known == 0 && required) findings.add(Severity::error, key, "is missing", "the frame size in pixels");
    return known;
  }
  const auto stated = wholeNumber(document[key], key, "1 or more", true, findings);
  if (!stated) return 0;
  if (*stated < 1) findings.add(Severity::error, key, std::to_string(*stated) + " is refused", "1 or more");
  if (*stated >= 1 && known != 0 && known != *stated) {
    findings.add(Severity::error, key,
                 "is " + std::to_string(*stated) + " but the frames have " + std::to_string(known),
                 "remove it to use that of the frames");
  }
  return *stated;
}

const FormatRow* rowOf(PixelFormat format) {
  const auto* row = std::find_if(std::begin(formatTable), std::end(formatTable),
                                 [=](const FormatRow& candidate) { return candidate.format == format; });
  return row == std::end(formatTable) ? nullptr : row;
}

const FormatRow* statedFormat(const Json::Value& value, Findings& findings) {
  for (const FormatRow& row : formatTable) {
    if (value.isString() && value.asString() == row.name) return &row;
  }
  findings.add(Severity::error, "format", shown(value) + " is not a format", formatNames());
  return nullptr;
}

// Of "frmChn".
const FormatRow* formatOfChannels(const Json::Value& value, Findings& findings) {
  const auto channels = wholeNumber(value, "frmChn", "1, 3 or 4", true, findings);
  if (!channels) return nullptr;
  const auto* row = std::find_if(std::begin(formatTable), std::end(formatTable),
                                 [&](const FormatRow& candidate) { return candidate.channels == *channels; });
  if (row != std::end(formatTable)) return row;
  findings.add(Severity::error, "frmChn", std::to_string(*channels) + " bytes per pixel are refused",
               "1, 3 or 4");
  return nullptr;
}

const FormatRow* readFormat(const Json::Value& document, PixelFormat known, Findings& findings) {
  const bool hasFormat = document.isMember("format");
  const bool hasChannels = document.isMember("frmChn");
  const FormatRow* const given = rowOf(known);
  const FormatRow* const stated = hasFormat ? statedFormat(document["format"], findings) : nullptr;
  const FormatRow* const counted = hasChannels ? formatOfChannels(document["frmChn"], findings) : nullptr;
  if (!hasFormat && !hasChannels && given == nullptr) {
    findings.add(Severity::error, "format", "is missing", formatNames());
  }
  if (stated != nullptr && given != nullptr && stated != given) {
    findings.add(Severity::error, "format",
                 "is " + quoted(stated->name) + " but the frames are " + quoted(given->name),
                 "remove it to use that of the frames");
  }
  const FormatRow* const format = stated != nullptr ? stated : given != nullptr ? given : counted;
  if (counted != nullptr && format->channels != counted->channels) {
    findings.add(Severity::error, "frmChn",
                 "is " + std::to_string(counted->channels) + " but " + quoted(format->name) + " has " +
                     std::to_string(format->channels),
                 "remove it");
  }
  return format;
}

// Of a number or a text that is one; none for everything else.
std::optional<double> numberOf(const Json::Value& value, const Findings& findings) {
  if (!findings.reads(value)) return std::nullopt;
  const std::string text = value.asString();
  try {
    std::size_t used = 0;
    const double number = std::stod(text, &used);
    return used == text.size() ? std::optional(number) : std::nullopt;
  } catch (const std::logic_error&) {
    return std::nullopt;
  }
}

double readAbsorption(const Json::Value& document, Findings& findings) {
  constexpr const char* key = "absorb_seconds";
  constexpr const char* right = "0.1 to 86400 seconds, or \"forever\"";
  if (!document.isMember(key)) return 0;
  const Json::Value& value = document[key];
  if (value.isString() && value.asString() == "forever") return std::numeric_limits<double>::infinity();
  if (document.isMember("lifeStatic")) {
    findings.addToKey(Severity::warning, "lifeStatic", "has no effect: absorb_seconds replaces it",
                      "remove it");
  }
  const std::optional<double> seconds = numberOf(value, findings);
  if (!seconds) {
    findings.add(Severity::error, key, shown(value) + " is not a time", right);
    return 0;
  }
  if (*seconds >= leastAbsorption && *seconds <= longestAbsorption) return *seconds;
  findings.add(Severity::error, key, shown(value) + " is out of range", right);
  return 0;
}

std::optional<double> readJoinGap(const Json::Value& document, Findings& findings) {
  constexpr const char* key = "join_gap";
  constexpr const char* right = "0 to 1, of the frame's longer side";
  if (!document.isMember(key)) return std::nullopt;
  const Json::Value& value = document[key];
  const std::optional<double> gap = numberOf(value, findings);
  if (!gap) {
    findings.add(Severity::error, key, shown(value) + " is not a number", right);
  } else if (!(*gap >= 0 && *gap <= 1)) {
    findings.add(Severity::error, key, shown(value) + " is out of range", right);
  }
  return gap;
}

Extent readExtent(const Json::Value& document, Findings& findings) {
  if (!document.isMember("extent")) return Extent::core;
  const Json::Value& value = document["extent"];
  for (const auto& [name, extent] : extentNames) {
    if (value.isString() && value.asString() == name) return extent;
  }
  findings.add(Severity::error, "extent", shown(value) + " is not an extent",
               R"("core", "full" or "object")");
  return Extent::core;
}

int readPeel(const Json::Value& document, Findings& findings) {
  if (!document.isMember("peel")) return mostPeeled;
  const auto layers = wholeNumber(document["peel"], "peel", "0 to 3", false, findings);
  if (layers && *layers >= 0 && *layers <= mostPeeled) return *layers;
  if (layers) findings.add(Severity::error, "peel", std::to_string(*layers) + " is out of range", "0 to 3");
  return mostPeeled;
}

std::string textOr(const Json::Value& value, std::int32_t number) {
  return value.isString() ? value.asString() : std::to_string(number);
}

std::vector<std::string> namesOf(const Json::Value& document) {
  const Json::Value& regions = document[includedRegions.key];
  if (!regions.isArray()) return {"frame"};
  std::vector<std::string> names;
  for (const Json::Value& region : regions) {
    const bool named = region.isObject() && region["name"].isString();
    names.push_back(named ? region["name"].asString() : std::string());
  }
  return names;
}

Json::Value withoutNulls(Json::Value document) {
  for (const std::string& key : document.getMemberNames()) {
    if (document[key].isNull()) document.removeMember(key);
  }
  return document;
}

void checkLargest(const FrameSize& frame, Findings& findings) {
  if (findings.anyError() || fitsIndices(frame.frmW, frame.frmH, frame.frmChn)) return;
  findings.add(Severity::error, "frmW",
               "frames of " + std::to_string(frame.frmW) + " x " + std::to_string(frame.frmH) +
                   " pixels are too large",
               "at most " + std::to_string(std::numeric_limits<std::int32_t>::max() / frame.frmChn) +
                   " pixels, in rows filled up to a multiple of 32");
}

}  // namespace

const char* nameOf(Extent extent) { return extentNames[static_cast<std::size_t>(extent)].first; }

HandleReading readHandleDocument(const Json::Value& given, const std::string& text, const KnownFrame& known) {
  Findings findings(text, check::Reader::handle);
  findings.addRepeats();
  check::checkKeys(given, "", check::documentKeys(check::Reader::handle), findings);
  const Json::Value document = withoutNulls(given);

  HandleConfiguration configuration;
  FrameSize& frame = configuration.frame;
  frame.frmW = readSide(document, "frmW", known.width, known.sizeRequired, findings);
  frame.frmH = readSide(document, "frmH", known.height, known.sizeRequired, findings);
  const bool hasSize = frame.frmW > 0 && frame.frmH > 0;
  if (const FormatRow* format = readFormat(document, known.format, findings)) configuration.format = *format;
  frame.frmChn = std::max(1, configuration.format.channels);
  if (hasSize) checkLargest(frame, findings);

  configuration.settings = check::checkScalars(document,
                                               {{"frmW", textOr(document["frmW"], frame.frmW)},
                                                {"frmH", textOr(document["frmH"], frame.frmH)},
                                                {"frmChn", textOr(document["frmChn"], frame.frmChn)}},
                                               findings);
  configuration.absorbSeconds = readAbsorption(document, findings);
  configuration.extent = readExtent(document, findings);
  configuration.joinGap = readJoinGap(document, findings);
  if (configuration.joinGap && configuration.extent == Extent::object) {
    findings.addToKey(Severity::warning, "join_gap", "has no effect with the extent \"object\"", "remove it");
  }
  configuration.peeled = readPeel(document, findings);
  configuration.regionNames = namesOf(document);

  const check::Outlines outlines = check::readOutlines(document, findings);
  if (!findings.anyError() && check::checkIncluded(outlines, findings) && hasSize) {
    configuration.coverage = *check::checkCoverage(outlines, frame, findings);
    check::checkMinBox(document, check::minBoxOf(configuration.settings, frame), frame,
                       &configuration.coverage, findings);
  }
  const bool refused = findings.anyError();
  return {findings.inOrder(), refused ? std::nullopt : std::optional(std::move(configuration))};
}

}  // namespace lm
