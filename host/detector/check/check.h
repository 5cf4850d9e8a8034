// What the plug-in will make of a configuration document: its findings, each with the place in the text, and
// the values that will be in effect.
#pragma once

#include <cstdint>
#include <opencv2/core.hpp>
#include <optional>
#include <string>
#include <vector>

namespace lm::host::detector::check {

enum class Severity {
  kNote,     // works, and may well be meant so
  kWarning,  // works, but hardly as it was meant
  kError,    // the plug-in refuses it, or nothing can ever be found
};

struct Finding {
  Severity severity = Severity::kNote;
  std::string key;   // the path to it, such as roi[0].points[2].x; empty for the document as a whole
  int line = 0;      // in the text, from 1; 0 when it has no place there
  int column = 0;    // in characters, from 1; 0 when it has no place there
  std::string text;  // what is wrong, naming the value
  std::string hint;  // what would be right; may be empty
};

// What the plug-in works with. What takes a frame size is there when the size is known.
struct Effective {
  std::int32_t thr_match = 0;     // grey levels by which a pixel and a sample that match may differ
  std::int32_t thr_heuris = 0;    // grey levels between two frames up to which a pixel counts as unchanged
  std::int32_t thr_illum = 0;     // grey levels above which a change of light is followed
  bool auto_sensitivity = false;  // the least thing that counts adapts to what is seen
  std::int32_t life_static_seconds = 0;  // until what stands still is background
  std::int32_t life_static = 0;          // the same in frames, at 30 a second
  double least_box_width = 0;            // as fractions of the frame; a box below both is dropped
  double least_box_height = 0;
  cv::Size frame{};                 // empty when the size is not known
  cv::Size least_box_pixels{};      // the same in pixels
  std::uint64_t memory = 0;         // bytes of the plug-in's buffers
  std::optional<double> watched{};  // share of the frame inside the regions, 0 to 1
};

struct Verdict {
  std::vector<Finding> findings;       // in the order of the text
  std::optional<Effective> effective;  // none when a finding is an error
  bool refused() const;                // whether one is
};

// `frame`: the size of the source's frames; else the document's own "frmW" and "frmH", if it has them. The
// document is judged as this program hands it to the plug-in (host/document.h): with the frames' size and, if
// it has no "roi", the whole frame added.
Verdict check_document(const std::string& text, std::optional<cv::Size> frame);

// One line: {"findings":[{"severity","key","line","column","text","hint"}],"effective":{...} or null}.
std::string to_json(const Verdict& verdict);

// note, warning or error.
const char* name_of(Severity severity);

}  // namespace lm::host::detector::check
