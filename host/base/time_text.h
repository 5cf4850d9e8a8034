// Times as people and programs read them. The same text in every locale.
#pragma once

#include <chrono>
#include <string>

namespace lm::host::base {

// "12.480": seconds to the nearest thousandth.
std::string seconds_text(std::chrono::microseconds time);

// The same as a number, for JSON.
double seconds_number(std::chrono::microseconds time);

// "1:02:03", or "2:03" below an hour; whole seconds that have passed.
std::string clock_text(std::chrono::microseconds time);

}  // namespace lm::host::base
