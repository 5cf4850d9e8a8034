// The report's timeline as HTML.
#pragma once

#include <chrono>
#include <string>
#include <vector>

#include "host/outputs/report/page.h"

namespace lm::host::outputs::report {

// Round, evenly spaced times from 0 up to the length, at most `most` of them.
std::vector<std::chrono::microseconds> axis_times(std::chrono::microseconds length, int most);

std::string timeline(const PageData& data);

}  // namespace lm::host::outputs::report
