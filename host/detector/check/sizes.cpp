#include "host/detector/check/sizes.h"

#include <json/json.h>

#include <limits>

#include "config/check/findings.h"
#include "config/param_entry.h"

namespace lm::host::detector::check {

using lm::check::Severity;
using lm::check::shown;

namespace {

constexpr int kChannels = 3;  // of the frames that this program passes
constexpr const char* kWidth = "frmW";
constexpr const char* kHeight = "frmH";
constexpr const char* kDepth = "frmChn";

// The number in the configuration; none, and a finding, if it is something else.
std::optional<int> stated_number(const Json::Value& value, const std::string& key, Findings& findings) {
  try {
    if (value.isString()) return static_cast<int>(convertParam(Conversion::integer, value.asString()));
    if (value.isIntegral()) return value.asInt();
  } catch (const std::exception&) {
    findings.add(Severity::error, key, "must be a whole number, not " + shown(value));
    return std::nullopt;
  }
  findings.add(Severity::warning, key, shown(value) + " is ignored; the source's value is used",
               "write a number in quotation marks, or remove it");
  return std::nullopt;
}

// The configuration's number, if valid; `actual`: the source's.
std::optional<int> check_size(const Json::Value& document, const std::string& key, std::optional<int> actual,
                              Findings& findings) {
  if (!document.isMember(key)) return std::nullopt;
  const Json::Value& value = document[key];
  const std::optional<int> stated = stated_number(value, key, findings);
  if (!stated) return std::nullopt;
  if (*stated < 1) {
    findings.add(Severity::error, key, shown(value) + " is refused by the plug-in",
                 "must be 1 or more; or remove it");
    return std::nullopt;
  }
  if (actual && *stated != *actual) {
    findings.add(Severity::error, key,
                 "is " + std::to_string(*stated) + " but the source's frames have " + std::to_string(*actual),
                 "remove it to use the source's value");
  } else if (!value.isString()) {
    findings.add(Severity::note, key, "the plug-in reads strings only; this program converts " + shown(value),
                 shown(Json::Value(std::to_string(*stated))) + " works in every host");
  }
  return stated;
}

void check_channels_alone(std::optional<int> stated, Findings& findings) {
  if (!stated || *stated == kChannels) return;
  if (*stated == 1 || *stated == 4) {
    findings.add(Severity::warning, kDepth,
                 "is " + std::to_string(*stated) + " but this program passes frames with 3",
                 "valid for other hosts only; remove it for this program");
    return;
  }
  findings.add(Severity::error, kDepth,
               "the plug-in refuses every frame of " + std::to_string(*stated) + " bytes per pixel",
               "3 for this program; 1 or 4 for others");
}

// The plug-in counts the bytes of a frame in 32 bits.
void check_product(cv::Size frame, const Json::Value& document, Findings& findings) {
  constexpr std::int64_t kMost = std::numeric_limits<std::int32_t>::max() / kChannels;
  if (std::int64_t{frame.width} * frame.height <= kMost) return;
  findings.add(Severity::error, document.isMember(kWidth) ? kWidth : "",
               "frames of " + std::to_string(frame.width) + " x " + std::to_string(frame.height) +
                   " pixels exceed what the plug-in can process",
               "at most " + std::to_string(kMost) + " pixels");
}

}  // namespace

SettledSizes check_sizes(const Json::Value& document, std::optional<cv::Size> frame, Findings& findings) {
  const auto side = [&](int cv::Size::*length) {
    return frame ? std::optional((*frame).*length) : std::nullopt;
  };
  const auto width = check_size(document, kWidth, side(&cv::Size::width), findings);
  const auto height = check_size(document, kHeight, side(&cv::Size::height), findings);
  const auto channels =
      check_size(document, kDepth, frame ? std::optional(kChannels) : std::nullopt, findings);
  if (!frame) check_channels_alone(channels, findings);
  if (!frame && width && height) frame = cv::Size(*width, *height);
  if (frame) check_product(*frame, document, findings);

  SettledSizes settled{frame, {}};
  for (const auto& [key, own] : {std::pair{kWidth, frame ? frame->width : 1},
                                 {kHeight, frame ? frame->height : 1},
                                 {kDepth, kChannels}}) {
    const Json::Value& value = document[key];
    settled.texts[key] = value.isString() ? value.asString() : std::to_string(own);
  }
  return settled;
}

}  // namespace lm::host::detector::check
