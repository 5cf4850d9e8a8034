// Which parts of a sample are quiet and which hold motion, where nobody said so.
#pragma once

#include <vector>

#include "host/commands/tune/seen.h"

namespace lm::host::commands::tune {

// Fills in the kind of spans that `marked` lacks, second by second, by how many of the settings have boxes in
// a second; the most and the least sensitive ones are among them. Something moves in the busiest seconds,
// those within a quarter of the way from the highest number to the lowest, and nothing does in the calmest,
// likewise. Where these numbers differ by less than a third of the settings there is but one kind of second:
// that in which most have boxes, or in which most have none. Seconds in which a change of light makes boxes,
// and those that touch a marked span, stay out of it.
Marks with_assumptions(Marks marked, const std::vector<Seen>& all);

}  // namespace lm::host::commands::tune
