// How a detector will interpret a configuration: findings with their positions in the text, and the effective
// values.
#pragma once

#include <cstdint>
#include <opencv2/core.hpp>
#include <optional>
#include <string>
#include <vector>

#include "config/check/finding.h"
#include "config/check/findings.h"

namespace lm::host::detector::check {

using lm::check::Finding;
using lm::check::Reader;
using lm::check::Severity;

// The effective values. Members that depend on the frame size are set if it is known.
struct Effective {
  std::int32_t thr_match = 0;      // grey levels by which a pixel and a sample that match may differ
  std::int32_t thr_heuris = 0;     // grey levels between two frames up to which a pixel counts as unchanged
  std::int32_t thr_illum = 0;      // grey levels above which a lighting change is followed
  bool auto_sensitivity = false;   // the minimum component size adapts to the scene
  double life_static_seconds = 0;  // after which still foreground becomes background; infinite: never
  std::int32_t life_static = 0;    // the same in frames, at 30 per second; 0: never
  std::string extent = "core";     // what boxes enclose: what peeling leaves; "full" or "object": more
  int peeled = 3;                  // layers
  double min_box_width = 0;        // as fractions of the frame; a box below both is dropped
  double min_box_height = 0;
  cv::Size frame{};                 // empty if unknown
  cv::Size min_box_pixels{};        // the same in pixels
  std::uint64_t memory = 0;         // bytes of the detector's buffers
  std::optional<double> watched{};  // share of the frame inside the regions, 0 to 1
  std::vector<std::string> adapts;  // keys whose values are those of the start: the program changes them
};

struct Verdict {
  std::vector<Finding> findings;       // in the order of the text
  std::optional<Effective> effective;  // none if a finding is an error
  bool refused() const;                // whether a finding is an error
};

// `frame`: the size in which frames are analysed (analysed_size in adapt.h); otherwise the document's own
// "frmW" and "frmH", if present. `reader`: detectors by handle, as this program uses them, or the plug-in by
// its entry points, as other hosts do, with the frame size and, if there is no "roi", the whole frame added.
Verdict check_document(const std::string& text, std::optional<cv::Size> frame,
                       Reader reader = Reader::handle);

// One line: {"findings":[{"severity","key","line","column","text","hint"}],"effective":{...} or null}.
std::string to_json(const Verdict& verdict);

// note, warning or error.
const char* name_of(Severity severity);

}  // namespace lm::host::detector::check
