// The steps from components to the boxes that are reported, for both engines.
#pragma once

#include <cstdint>
#include <vector>

#include "objects/box.h"
#include "objects/component.h"
#include "objects/small_components.h"

class kAMBLE;

namespace lm {

// Where a component begins. A frame without columns has only the first.
struct Position {
  std::int32_t x, y;
};
Position firstPixel(const kAMBLE& engine, const ccObj& component);

// Whether a component has enough pixels for a box. With automatic sensitivity one that has not is added to
// `small`.
bool isLarge(const kAMBLE& engine, const ccObj& component, SmallComponents& small);

// Joins boxes that lie close together, drops small ones, joins those that overlap.
void joinBoxes(const kAMBLE& engine, std::vector<boxRect>& boxes);

// Converts the boxes to fractions of the frame and adapts the minimum size of a component.
void finishBoxes(kAMBLE& engine, std::vector<boxRect>& boxes, SmallComponents& small);

}  // namespace lm
