#include "host/detector/check/check.h"

#include <json/json.h>

#include <algorithm>

#include "config/check/coverage.h"
#include "config/check/findings.h"
#include "config/check/json_document.h"
#include "config/check/known_keys.h"
#include "config/check/min_box.h"
#include "config/check/outlines.h"
#include "config/check/scalars.h"
#include "config/handle_document.h"
#include "host/detector/adapt.h"
#include "host/detector/check/adapt.h"
#include "host/detector/check/effect.h"
#include "host/detector/check/lines.h"
#include "host/detector/check/sizes.h"

namespace lm::host::detector::check {

using lm::check::Findings;

namespace {

// For sizes and regions that could be read.
std::optional<lm::check::Coverage> look_at_regions(const lm::check::Outlines& outlines,
                                                   std::optional<cv::Size> frame, Findings& findings) {
  if (findings.anyError() || !lm::check::checkIncluded(outlines, findings) || !frame) return std::nullopt;
  return lm::check::checkCoverage(outlines, {frame->width, frame->height, 3}, findings);
}

std::vector<std::string> changed_by_the_program(const Json::Value& document) {
  std::vector<std::string> keys;
  for (const char* key : {"sensitivity", "peel"}) {
    if (adapts(document) && !sets(document, key)) keys.emplace_back(key);
  }
  return keys;
}

Verdict verdict_by_handle(const Json::Value& given, const std::string& text, std::optional<cv::Size> frame) {
  const Json::Value document = adapts(given) ? completed(given) : given;
  KnownFrame known{.format = PixelFormat::bgr, .sizeRequired = frame.has_value()};
  if (frame) {
    known.width = frame->width;
    known.height = frame->height;
  }
  HandleReading reading = readHandleDocument(document, text, known);
  if (!reading.configuration) return {std::move(reading.findings), std::nullopt};
  Verdict verdict{std::move(reading.findings), in_effect(*reading.configuration)};
  verdict.effective->adapts = changed_by_the_program(given);
  Findings more(text);
  check_memory(*verdict.effective, installed_memory(), more);
  const std::vector<Finding> first = more.inOrder();  // on the document as a whole
  verdict.findings.insert(verdict.findings.begin(), first.begin(), first.end());
  return verdict;
}

Verdict verdict_by_entry_points(const Json::Value& document, std::optional<cv::Size> frame,
                                Findings& findings) {
  findings.addRepeats();
  lm::check::checkKeys(document, "", lm::check::documentKeys(), findings);
  const SettledSizes sizes = check_sizes(document, frame, findings);
  const lm::check::Outlines outlines = lm::check::readOutlines(document, findings);
  const std::optional<lm::check::Coverage> coverage = look_at_regions(outlines, sizes.frame, findings);
  const Settings settings = lm::check::checkScalars(document, sizes.texts, findings);

  const std::size_t regions = outlines.included.size() + outlines.excluded.size();
  Effective effective = in_effect(settings, sizes.frame, regions);
  if (coverage) effective.watched = coverage->share;
  if (sizes.frame) {
    lm::check::checkMinBox(document, {effective.min_box_pixels.width, effective.min_box_pixels.height},
                           {sizes.frame->width, sizes.frame->height, 3}, coverage ? &*coverage : nullptr,
                           findings);
  }
  if (findings.anyError()) return {findings.inOrder(), std::nullopt};
  check_memory(effective, installed_memory(), findings);
  return {findings.inOrder(), effective};
}

// Of the keys that no detector reads.
void add_keys_of_the_program(const Json::Value& document, const std::string& text, Reader reader,
                             Verdict& verdict) {
  Findings findings(text);
  check_adapt(document, reader, findings);
  check_lines(document, findings);
  if (findings.anyError()) verdict.effective.reset();
  for (const Finding& finding : findings.inOrder()) verdict.findings.push_back(finding);
  std::ranges::stable_sort(verdict.findings, {},
                           [](const Finding& finding) { return std::pair(finding.line, finding.column); });
}

}  // namespace

bool Verdict::refused() const {
  return std::any_of(findings.begin(), findings.end(),
                     [](const Finding& finding) { return finding.severity == Severity::error; });
}

const char* name_of(Severity severity) {
  switch (severity) {
    case Severity::error:
      return "error";
    case Severity::warning:
      return "warning";
    default:
      return "note";
  }
}

Verdict check_document(const std::string& text, std::optional<cv::Size> frame, Reader reader) {
  Json::Value document;
  try {
    document = lm::check::readDocument(text);
  } catch (const lm::check::NoDocument& fault) {
    return {{{Severity::error, "", fault.line(), fault.column(), fault.cause(), ""}}, std::nullopt};
  }
  Findings findings(text);
  Verdict verdict = reader == Reader::handle ? verdict_by_handle(document, text, frame)
                                             : verdict_by_entry_points(document, frame, findings);
  add_keys_of_the_program(document, text, reader, verdict);
  return verdict;
}

}  // namespace lm::host::detector::check
