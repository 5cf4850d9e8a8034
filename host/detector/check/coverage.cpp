#include "host/detector/check/coverage.h"

#include <opencv2/imgproc.hpp>

#include "config/polygon.h"
#include "config/region_rules.h"
#include "host/detector/check/findings.h"

namespace lm::host::detector::check {
namespace {

// Pixels times corners; about a second.
constexpr double kMostWork = 1e9;

double work_of(const Outlines& outlines, cv::Size frame) {
  double corners = 16;  // the cost of creating a mask
  for (const Outline& region : outlines.included) corners += static_cast<double>(region.corners.size());
  // Exclusion regions are drawn twice.
  for (const Outline& region : outlines.excluded) corners += 2.0 * static_cast<double>(region.corners.size());
  return corners * frame.width * frame.height;
}

cv::Mat mask_of(const Outline& region, cv::Size frame) {
  std::vector<pnt> points;
  points.reserve(region.corners.size());
  for (const Corner& corner : region.corners)
    points.push_back({toPixels(corner.x, frame.width), toPixels(corner.y, frame.height)});
  cv::Mat mask(frame, CV_8UC1);
  cvtPoly2Mask(points, mask.data, frame.width, frame.height);
  return mask;
}

bool overlap(const cv::Mat& a, const cv::Mat& b) { return cv::countNonZero(a & b) > 0; }

// Regions with too few points are already reported.
bool has_outline(const Outline& region) { return region.corners.size() >= 3; }

cv::Mat all_excluded(const Outlines& outlines, cv::Size frame, Findings& findings) {
  cv::Mat all = cv::Mat::zeros(frame, CV_8UC1);
  for (const Outline& region : outlines.excluded) {
    const cv::Mat mask = mask_of(region, frame);
    if (has_outline(region) && cv::countNonZero(mask) == 0) {
      findings.add(Severity::kWarning, region.path, region.name + " covers no pixel, so it excludes nothing");
    }
    all |= mask;
  }
  return all;
}

cv::Mat all_included(const Outlines& outlines, const cv::Mat& excluded, Findings& findings) {
  if (outlines.whole_frame) return cv::Mat::ones(excluded.size(), CV_8UC1);
  cv::Mat all = cv::Mat::zeros(excluded.size(), CV_8UC1);
  for (const Outline& region : outlines.included) {
    const cv::Mat mask = mask_of(region, excluded.size());
    if (has_outline(region) && cv::countNonZero(mask) == 0) {
      findings.add(Severity::kWarning, region.path, region.name + " covers no pixel of the frame",
                   "use points inside the frame that are not on one line");
    } else if (cv::countNonZero(mask) > 0 && !overlap(mask, excluded == 0)) {
      findings.add(Severity::kWarning, region.path,
                   region.name + " has no effect: exclusion regions cover all of it",
                   "exclusion regions take precedence");
    }
    all |= mask;
  }
  return all;
}

void check_exclusions(const Outlines& outlines, const cv::Mat& included, Findings& findings) {
  for (const Outline& region : outlines.excluded) {
    const cv::Mat mask = mask_of(region, included.size());
    if (cv::countNonZero(mask) == 0 || overlap(mask, included)) continue;
    findings.add(Severity::kNote, region.path,
                 region.name + " excludes nothing: it overlaps no region of interest");
  }
}

}  // namespace

std::optional<Coverage> check_coverage(const Outlines& outlines, cv::Size frame, Findings& findings) {
  if (outlines.whole_frame && outlines.excluded.empty()) return Coverage{1, {{0, 0}, frame}};
  if (work_of(outlines, frame) > kMostWork) {
    findings.add(Severity::kNote, "", "too many pixels and points to check what the regions cover");
    return std::nullopt;
  }
  const cv::Mat excluded = all_excluded(outlines, frame, findings);
  cv::Mat watched = all_included(outlines, excluded, findings);
  check_exclusions(outlines, watched, findings);
  watched.setTo(0, excluded);
  const int pixels = cv::countNonZero(watched);
  if (pixels == 0) {
    findings.add(
        Severity::kError, outlines.whole_frame ? excludedRegions.key : includedRegions.key,
        "nothing is watched: no pixel is inside a region of interest and outside all exclusion regions");
  }
  return Coverage{pixels / (1.0 * frame.width * frame.height), cv::boundingRect(watched)};
}

}  // namespace lm::host::detector::check
