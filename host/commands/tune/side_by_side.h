// Runs work in threads.
#pragma once

#include <cstddef>
#include <functional>

namespace lm::host::commands::tune {

// Calls `work` for 0 to count - 1, each once, in `jobs` threads. `done`: called after each one with the
// number of those finished; never twice at the same time. When one throws, the others that have begun are
// finished, no more are begun, and the first exception is thrown again.
void side_by_side(std::size_t count, std::size_t jobs, const std::function<void(std::size_t)>& work,
                  const std::function<void(std::size_t)>& done);

}  // namespace lm::host::commands::tune
