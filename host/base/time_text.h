// Times as text for people and programs, independent of the locale.
#pragma once

#include <chrono>
#include <string>

namespace lm::host::base {

// "12.480": seconds to the nearest thousandth.
std::string seconds_text(std::chrono::microseconds time);

// The same as a JSON number.
double seconds_number(std::chrono::microseconds time);

// "1:02:03", or "2:03" below an hour; rounded down to whole seconds.
std::string clock_text(std::chrono::microseconds time);

}  // namespace lm::host::base
