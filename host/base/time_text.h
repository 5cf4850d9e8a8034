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

using WallTime = std::chrono::system_clock::time_point;

// "2026-11-21T15:30:12.345Z"
std::string utc_text(WallTime time);

// "2026-11-21T15-30-12.345Z": without characters that are special in file names. Sorts by time.
std::string file_time(WallTime time);

}  // namespace lm::host::base
