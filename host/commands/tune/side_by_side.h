// Work in processes of its own: the plug-in has one detector a process.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace lm::host::commands::tune {

// Calls `work` for 0 to count - 1, each in a process that is a copy of this one, at most `jobs` at a time,
// and returns what they return. `done`: called after each with the number of those that are done. Throws
// Failure when one of them does, or dies, and when the program is interrupted; no process stays behind.
std::vector<std::string> side_by_side(std::size_t count, std::size_t jobs,
                                      const std::function<std::string(std::size_t)>& work,
                                      const std::function<void(std::size_t)>& done);

}  // namespace lm::host::commands::tune
