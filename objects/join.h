// From the boxes of single components to the boxes of objects: pure functions on a list of boxes in pixels.
#pragma once

#include <cstdint>
#include <vector>

#include "objects/box.h"

namespace lm {

// Joins boxes whose gap, truncated to whole pixels, is at most `maxGap`, until none are left. Each pass joins
// disjoint pairs only: box i with the first later box that is near and not yet joined in this pass.
void joinNear(std::vector<boxRect>& boxes, float maxGap);

// Joins boxes that overlap (isOverlap), in the same way.
void joinOverlapping(std::vector<boxRect>& boxes);

// Removes, keeping order, the boxes that are both narrower than `minWidth` and lower than `minHeight`.
void dropSmall(std::vector<boxRect>& boxes, std::int32_t minWidth, std::int32_t minHeight);

// Turns pixels into fractions of the frame. A side below 1 gives 0 and a line on standard error for every
// box.
void toFractions(std::vector<boxRect>& boxes, std::int32_t frameWidth, std::int32_t frameHeight);

}  // namespace lm
