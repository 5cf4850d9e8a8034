#include "host/detector/check/check.h"

#include <json/json.h>

#include <algorithm>

#include "host/detector/check/coverage.h"
#include "host/detector/check/effect.h"
#include "host/detector/check/findings.h"
#include "host/detector/check/known_keys.h"
#include "host/detector/check/outlines.h"
#include "host/detector/check/scalars.h"
#include "host/detector/check/sizes.h"
#include "host/detector/document.h"

namespace lm::host::detector::check {
namespace {

// Whether no region of interest has an outline; independent of pixels.
bool nothing_included(const Outlines& outlines) {
  return !outlines.whole_frame && std::none_of(outlines.included.begin(), outlines.included.end(),
                                               [](const Outline& region) { return !region.corners.empty(); });
}

// For sizes and regions that could be read.
std::optional<Coverage> look_at_regions(const Outlines& outlines, std::optional<cv::Size> frame,
                                        Findings& findings) {
  if (findings.any_error()) return std::nullopt;
  if (nothing_included(outlines)) {
    findings.add(Severity::kError, "roi", "nothing is watched: no region has three points");
    return std::nullopt;
  }
  return frame ? check_coverage(outlines, *frame, findings) : std::nullopt;
}

Verdict verdict_on(const Json::Value& document, std::optional<cv::Size> frame, Findings& findings) {
  findings.add_repeats();
  check_keys(document, "", document_keys(), findings);
  const SettledSizes sizes = check_sizes(document, frame, findings);
  const Outlines outlines = read_outlines(document, findings);
  const std::optional<Coverage> coverage = look_at_regions(outlines, sizes.frame, findings);
  const Settings settings = check_scalars(document, sizes, findings);

  const std::size_t regions = outlines.included.size() + outlines.excluded.size();
  Effective effective = in_effect(settings, sizes.frame, regions);
  if (coverage) effective.watched = coverage->watched;
  check_min_box(document, effective, coverage, findings);
  if (findings.any_error()) return {findings.in_order(), std::nullopt};
  check_memory(effective, installed_memory(), findings);
  return {findings.in_order(), effective};
}

}  // namespace

bool Verdict::refused() const {
  return std::any_of(findings.begin(), findings.end(),
                     [](const Finding& finding) { return finding.severity == Severity::kError; });
}

const char* name_of(Severity severity) {
  switch (severity) {
    case Severity::kError:
      return "error";
    case Severity::kWarning:
      return "warning";
    default:
      return "note";
  }
}

Verdict check_document(const std::string& text, std::optional<cv::Size> frame) {
  Json::Value document;
  try {
    document = read_document(text);
  } catch (const NoDocument& fault) {
    return {{{Severity::kError, "", fault.line(), fault.column(), fault.cause(), ""}}, std::nullopt};
  }
  Findings findings(text);
  return verdict_on(document, frame, findings);
}

}  // namespace lm::host::detector::check
