// Tries settings in rounds, each around the best one so far.
#pragma once

#include <functional>
#include <vector>

#include "host/commands/tune/outcome.h"

namespace lm::host::commands::tune {

// Tries settings that were not tried before, and returns the results of each.
using TryAll = std::function<std::vector<Seen>(const std::vector<Setting>&)>;

// Fills in `trials`, `marks` (which contains the marked spans) and `chosen`; `own` is known. Two settings
// decide what is quiet. If nothing can be better than the start, no other is tried.
void search(Outcome& outcome, const TryAll& try_all);

// Approximate number of settings tried.
std::size_t usual_trials(const Own& own);

}  // namespace lm::host::commands::tune
