// The pixels that a document's regions cover, by the plug-in's rules.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "config/check/outlines.h"
#include "config/check/pixel_bits.h"
#include "config/document.h"

namespace lm::check {

class Findings;

struct Bounds {
  std::int32_t x = 0, y = 0, width = 0, height = 0;
  bool empty() const { return width == 0; }
};

struct Coverage {
  double share = 0;                  // of the frame that is watched, 0 to 1
  Bounds bounds{};                   // of the watched area
  PixelBits watched{};               // inside a region of interest and outside all exclusion regions
  std::vector<PixelBits> regions{};  // of interest, one each; none if the whole frame is one
};

// Reports regions that cover nothing, or nothing that counts. None if nothing is included, if there are
// errors already, or if the plug-in is the reader and counting would take too long.
std::optional<Coverage> checkCoverage(const Outlines& outlines, const FrameSize& frame, Findings& findings);

// Reports that no region of interest has an outline; independent of pixels. Returns whether one has.
bool checkIncluded(const Outlines& outlines, Findings& findings);

}  // namespace lm::check
