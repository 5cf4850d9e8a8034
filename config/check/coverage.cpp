#include "config/check/coverage.h"

#include <algorithm>

#include "config/check/findings.h"
#include "config/polygon.h"
#include "config/region_rules.h"

namespace lm::check {
namespace {

// Pixels times corners; about a second.
constexpr double mostWork = 1e9;

double workOf(const Outlines& outlines, const FrameSize& frame) {
  double corners = 16;  // the cost of creating a mask
  for (const Outline& region : outlines.included) corners += static_cast<double>(region.corners.size());
  // Exclusion regions are drawn twice.
  for (const Outline& region : outlines.excluded) corners += 2.0 * static_cast<double>(region.corners.size());
  return corners * frame.frmW * frame.frmH;
}

std::vector<PixelBits> masksOf(const std::vector<Outline>& regions, const FrameSize& frame) {
  if (regions.empty()) return {};
  std::vector<std::uint8_t> mask(static_cast<std::size_t>(frame.frmW) * static_cast<std::size_t>(frame.frmH));
  std::vector<PixelBits> masks;
  masks.reserve(regions.size());
  for (const Outline& region : regions) {
    std::vector<pnt> points;
    points.reserve(region.corners.size());
    for (const Corner& corner : region.corners)
      points.push_back({toPixels(corner.x, frame.frmW), toPixels(corner.y, frame.frmH)});
    cvtPoly2Mask(points, mask.data(), frame.frmW, frame.frmH);
    masks.emplace_back(mask.data(), frame.frmW, frame.frmH);
  }
  return masks;
}

// Regions with too few points are already reported.
bool hasOutline(const Outline& region) { return region.corners.size() >= 3; }

PixelBits allExcluded(const Outlines& outlines, const std::vector<PixelBits>& masks, const FrameSize& frame,
                      Findings& findings) {
  PixelBits all(frame.frmW, frame.frmH);
  for (std::size_t i = 0; i < masks.size(); ++i) {
    const Outline& region = outlines.excluded[i];
    if (hasOutline(region) && masks[i].count() == 0) {
      findings.add(Severity::warning, region.path, region.name + " covers no pixel, so it excludes nothing");
    }
    all.add(masks[i]);
  }
  return all;
}

PixelBits allIncluded(const Outlines& outlines, const std::vector<PixelBits>& masks,
                      const PixelBits& excluded, const FrameSize& frame, Findings& findings) {
  PixelBits all(frame.frmW, frame.frmH);
  if (outlines.wholeFrame) all.fill();
  for (std::size_t i = 0; i < masks.size(); ++i) {
    const Outline& region = outlines.included[i];
    const bool covers = masks[i].count() > 0;
    if (hasOutline(region) && !covers) {
      findings.add(Severity::warning, region.path, region.name + " covers no pixel of the frame",
                   "use points inside the frame that are not on one line");
    } else if (covers && !masks[i].exceeds(excluded)) {
      findings.add(Severity::warning, region.path,
                   region.name + " has no effect: exclusion regions cover all of it",
                   "exclusion regions take precedence");
    }
    all.add(masks[i]);
  }
  return all;
}

void checkExclusions(const Outlines& outlines, const std::vector<PixelBits>& masks, const PixelBits& included,
                     Findings& findings) {
  for (std::size_t i = 0; i < masks.size(); ++i) {
    if (masks[i].count() == 0 || masks[i].meets(included)) continue;
    const Outline& region = outlines.excluded[i];
    findings.add(Severity::note, region.path,
                 region.name + " excludes nothing: it overlaps no region of interest");
  }
}

Bounds boundsOf(const PixelBits& pixels, const FrameSize& frame) {
  std::int32_t left = frame.frmW, top = frame.frmH, right = -1, bottom = -1;
  for (std::int32_t y = 0; y < frame.frmH; ++y) {
    for (std::int32_t x = 0; x < frame.frmW; ++x) {
      if (!pixels.isSet(x, y)) continue;
      left = std::min(left, x);
      right = std::max(right, x);
      top = std::min(top, y);
      bottom = y;
    }
  }
  return right < 0 ? Bounds{} : Bounds{left, top, right - left + 1, bottom - top + 1};
}

}  // namespace

bool checkIncluded(const Outlines& outlines, Findings& findings) {
  const bool any =
      outlines.wholeFrame || std::any_of(outlines.included.begin(), outlines.included.end(),
                                         [](const Outline& region) { return !region.corners.empty(); });
  if (!any) findings.add(Severity::error, "roi", "nothing is watched: no region has three points");
  return any;
}

std::optional<Coverage> checkCoverage(const Outlines& outlines, const FrameSize& frame, Findings& findings) {
  if (outlines.wholeFrame && outlines.excluded.empty() && findings.reader() == Reader::plugin)
    return Coverage{1, {0, 0, frame.frmW, frame.frmH}};
  if (workOf(outlines, frame) > mostWork && findings.reader() == Reader::plugin) {
    findings.add(Severity::note, "", "too many pixels and points to check what the regions cover");
    return std::nullopt;
  }
  const std::vector<PixelBits> exclusions = masksOf(outlines.excluded, frame);
  const PixelBits excluded = allExcluded(outlines, exclusions, frame, findings);
  Coverage coverage;
  coverage.regions = masksOf(outlines.included, frame);
  coverage.watched = allIncluded(outlines, coverage.regions, excluded, frame, findings);
  checkExclusions(outlines, exclusions, coverage.watched, findings);
  coverage.watched.remove(excluded);
  const std::int64_t pixels = coverage.watched.count();
  if (pixels == 0) {
    findings.add(
        Severity::error, outlines.wholeFrame ? excludedRegions.key : includedRegions.key,
        "nothing is watched: no pixel is inside a region of interest and outside all exclusion regions");
  }
  coverage.share = static_cast<double>(pixels) / (1.0 * frame.frmW * frame.frmH);
  coverage.bounds = boundsOf(coverage.watched, frame);
  return coverage;
}

}  // namespace lm::check
