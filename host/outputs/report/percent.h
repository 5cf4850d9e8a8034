// Shares as text.
#pragma once

#include <string>

namespace lm::host::outputs::report {

// "37 %", "4.2 %" below ten, "0.13 %" below one; independent of the locale.
std::string percent(double share);

}  // namespace lm::host::outputs::report
