// Settings tried one round after the other, each round around the best one so far.
#pragma once

#include <functional>
#include <vector>

#include "host/commands/tune/outcome.h"

namespace lm::host::commands::tune {

// Tries settings, which are all new to it, and returns what was seen with each.
using TryAll = std::function<std::vector<Seen>(const std::vector<Setting>&)>;

// Fills in `trials`, `marks` (which holds the spans that are marked) and `chosen`.
void search(Outcome& outcome, const TryAll& try_all);

// How many settings that tries, more or less.
std::size_t usual_trials();

}  // namespace lm::host::commands::tune
