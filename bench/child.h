// Measures in a process of its own, so that nothing done before affects the result.
#pragma once

#include <functional>
#include <vector>

namespace lm::bench {

// Runs `measure` in a child process and returns its figures, `count` of them; NaN if it fails.
std::vector<double> in_child(std::size_t count, const std::function<std::vector<double>()>& measure);

}  // namespace lm::bench
