// Estimates which parts of a sample are quiet and which have motion, where the user marked nothing.
#pragma once

#include <vector>

#include "host/commands/tune/seen.h"

namespace lm::host::commands::tune {

// Fills in the kind of spans that `marked` lacks, second by second, by the number of settings with boxes in
// each second; the most and the least sensitive settings are among them. Seconds within a quarter of the
// range below the highest number count as motion, those within a quarter above the lowest as quiet. If the
// numbers differ by less than a third of the settings, all seconds are of one kind: motion if most settings
// have boxes in them, otherwise quiet. Seconds with boxes of a lighting change and seconds that touch a
// marked span are left out.
Marks with_assumptions(Marks marked, const std::vector<Seen>& all);

}  // namespace lm::host::commands::tune
