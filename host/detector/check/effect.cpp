#include "host/detector/check/effect.h"

#include <json/json.h>
#include <unistd.h>

#include <cmath>

#include "base/integers.h"
#include "engine/rules.h"
#include "host/detector/check/findings.h"

namespace lm::host::detector::check {
namespace {

// What the plug-in needs for frames of 3 channels, beside a mask for every region: docs/architecture.md.
constexpr std::uint64_t kBytesPerPixel = 73;

constexpr double kUsualRate = 30;  // frames per second

std::string in_pixels(cv::Size size) {
  return std::to_string(size.width) + " x " + std::to_string(size.height) + " pixels";
}

// The largest box along one side: boxes have a margin of one pixel, and one that touches the right or bottom
// border is as large as the frame.
int largest(int begin, int length, int frame) { return begin + length >= frame ? frame : length + 2; }

void check_side(const Json::Value& document, const char* key, int pixels, Findings& findings) {
  if (!document[key].isString() || pixels > 0) return;
  findings.add(Severity::kWarning, key,
               "is less than a pixel: no box is dropped, whatever the minimum of the other side",
               "make both at least a pixel, or remove both");
}

}  // namespace

Effective in_effect(const Settings& settings, std::optional<cv::Size> frame, std::size_t regions) {
  Effective effective;
  effective.thr_match = settings.thrMatch;
  effective.thr_heuris = settings.thrHeuris;
  effective.thr_illum = settings.thrIllum;
  effective.auto_sensitivity = settings.autoSensitivity;
  effective.life_static_seconds = settings.lifeStatic;
  effective.life_static = staticLifeFrames(settings.lifeStatic, kUsualRate);
  effective.min_box_width = static_cast<double>(settings.minObjW);
  effective.min_box_height = static_cast<double>(settings.minObjH);
  if (!frame) return effective;
  effective.frame = *frame;
  effective.min_box_pixels = {toInt32(static_cast<float>(frame->width) * settings.minObjW),
                              toInt32(static_cast<float>(frame->height) * settings.minObjH)};
  const auto pixels = static_cast<std::uint64_t>(frame->width) * static_cast<std::uint64_t>(frame->height);
  effective.memory = pixels * (kBytesPerPixel + regions);
  return effective;
}

void check_min_box(const Json::Value& document, const Effective& effective,
                   const std::optional<Coverage>& coverage, Findings& findings) {
  if (effective.frame.empty()) return;
  const cv::Size least = effective.min_box_pixels;
  check_side(document, "minBoxW", least.width, findings);
  check_side(document, "minBoxH", least.height, findings);
  if (!coverage || coverage->bounds.empty()) return;
  const cv::Rect& watched = coverage->bounds;
  const cv::Size most(largest(watched.x, watched.width, effective.frame.width),
                      largest(watched.y, watched.height, effective.frame.height));
  // A box is dropped if both sides are below.
  if (most.width >= least.width || most.height >= least.height) return;
  std::string key = "roi";
  for (const char* stated : {"minBoxH", "minBoxW"}) {
    if (document.isMember(stated)) key = stated;
  }
  findings.add(Severity::kError, key,
               "no box can be large enough: the minimum box size is " + in_pixels(least) +
                   ", the watched area spans " + in_pixels(watched.size()),
               "reduce minBoxW or minBoxH, or enlarge the region");
}

void check_memory(const Effective& effective, std::uint64_t installed, Findings& findings) {
  if (installed == 0 || effective.memory <= installed) return;
  findings.add(Severity::kWarning, "",
               "the plug-in needs " + memory_text(effective.memory) + " for frames of " +
                   in_pixels(effective.frame) + "; this computer has " + memory_text(installed),
               "use smaller frames (--scale)");
}

std::uint64_t installed_memory() {
  const long pages = sysconf(_SC_PHYS_PAGES);
  const long size = sysconf(_SC_PAGESIZE);
  return pages > 0 && size > 0 ? static_cast<std::uint64_t>(pages) * static_cast<std::uint64_t>(size) : 0;
}

std::string memory_text(std::uint64_t bytes) {
  constexpr std::uint64_t kMega = 1'000'000;
  return bytes >= 10'000 * kMega ? std::to_string(bytes / (1000 * kMega)) + " GB"
                                 : std::to_string((bytes + kMega / 2) / kMega) + " MB";
}

}  // namespace lm::host::detector::check
