// Runs work in child processes: the plug-in supports one detector per process.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace lm::host::commands::tune {

// Calls `work` for 0 to count - 1, each in a forked copy of this process, at most `jobs` at a time, and
// returns the results. `done`: called after each one with the number of those finished. Throws Failure if one
// of them throws or dies, and if the program is interrupted; no process is left running.
std::vector<std::string> side_by_side(std::size_t count, std::size_t jobs,
                                      const std::function<std::string(std::size_t)>& work,
                                      const std::function<void(std::size_t)>& done);

}  // namespace lm::host::commands::tune
