#include "config/check/min_box.h"

#include <json/json.h>

#include <string>

#include "base/integers.h"
#include "config/check/findings.h"

namespace lm::check {
namespace {

// The largest box along one side: boxes have a margin of one pixel, and one that touches the right or bottom
// border is as large as the frame.
std::int32_t largest(std::int32_t begin, std::int32_t length, std::int32_t frame) {
  return begin + length >= frame ? frame : length + 2;
}

std::string inPixels(std::int32_t width, std::int32_t height) {
  return std::to_string(width) + " x " + std::to_string(height) + " pixels";
}

void checkSide(const Json::Value& document, const char* key, std::int32_t pixels, Findings& findings) {
  if (!findings.reads(document[key]) || pixels > 0) return;
  findings.add(Severity::warning, key,
               "is less than a pixel: no box is dropped, whatever the minimum of the other side",
               "make both at least a pixel, or remove both");
}

}  // namespace

MinBox minBoxOf(const Settings& settings, const FrameSize& frame) {
  return {toInt32(static_cast<float>(frame.frmW) * settings.minObjW),
          toInt32(static_cast<float>(frame.frmH) * settings.minObjH)};
}

void checkMinBox(const Json::Value& document, const MinBox& least, const FrameSize& frame,
                 const Coverage* coverage, Findings& findings) {
  checkSide(document, "minBoxW", least.width, findings);
  checkSide(document, "minBoxH", least.height, findings);
  if (coverage == nullptr || coverage->bounds.empty()) return;
  const Bounds& watched = coverage->bounds;
  // A box is dropped if both sides are below.
  if (largest(watched.x, watched.width, frame.frmW) >= least.width ||
      largest(watched.y, watched.height, frame.frmH) >= least.height) {
    return;
  }
  std::string key = "roi";
  for (const char* stated : {"minBoxH", "minBoxW"}) {
    if (document.isMember(stated)) key = stated;
  }
  findings.add(Severity::error, key,
               "no box can be large enough: the minimum box size is " + inPixels(least.width, least.height) +
                   ", the watched area spans " + inPixels(watched.width, watched.height),
               "reduce minBoxW or minBoxH, or enlarge the region");
}

}  // namespace lm::check
