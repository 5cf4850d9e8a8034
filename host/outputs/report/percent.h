// Shares as people read them.
#pragma once

#include <string>

namespace lm::host::outputs::report {

// "37 %", "4.2 %" below ten, "0.13 %" below one; the same text in every locale.
std::string percent(double share);

}  // namespace lm::host::outputs::report
