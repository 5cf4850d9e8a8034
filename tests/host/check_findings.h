// Findings as lines, for comparison in tests.
#pragma once

#include <string>
#include <vector>

#include "host/detector/check/check.h"

namespace lm::host::check {

// For the plug-in by its entry points.
host::detector::check::Verdict for_plugin(const std::string& document, std::optional<cv::Size> frame);

// Of each, "error 1:17 sensitivity": severity, position, key.
std::vector<std::string> places_of(const host::detector::check::Verdict& verdict);

// The finding on this key. The first one if there are several; one without a text if there are none.
host::detector::check::Finding finding_on(const host::detector::check::Verdict& verdict,
                                          const std::string& key);

}  // namespace lm::host::check
