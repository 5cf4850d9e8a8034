// The steps from components to the boxes that are reported, for both engines.
#pragma once

#include <vector>

#include "objects/box.h"
#include "objects/runs.h"
#include "objects/small_components.h"

class kAMBLE;

namespace lm {

// The boxes, in pixels, of the components that are large enough; with automatic sensitivity the others are
// collected in `small`.
std::vector<boxRect> boxesOf(const kAMBLE& engine, const std::vector<SpannedComponent>& components,
                             SmallComponents& small);

// Joins boxes that lie close together, drops small ones, joins those that overlap.
void joinBoxes(const kAMBLE& engine, std::vector<boxRect>& boxes);

// Converts the boxes to fractions of the frame and adapts the minimum size of a component.
void finishBoxes(kAMBLE& engine, std::vector<boxRect>& boxes, SmallComponents& small);

}  // namespace lm
