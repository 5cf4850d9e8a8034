#include "host/outputs/report/percent.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace lm::host::outputs::report {

std::string percent(double share) {
  const double value = std::clamp(std::isfinite(share) ? 100 * share : 0.0, 0.0, 100.0);
  const int digits = value == 0 || value >= 9.95 ? 0 : value >= 0.995 ? 1 : 2;
  char text[16];
  const auto end = std::to_chars(text, text + sizeof text, value, std::chars_format::fixed, digits).ptr;
  return std::string(text, end) + " %";
}

}  // namespace lm::host::outputs::report
