// Checks a run's configuration before it starts.
#pragma once

#include <opencv2/core.hpp>
#include <optional>
#include <string>

namespace lm::host::detector::check {

// Prints warnings to standard error, one per line. Throws Failure (kRefused) with the first error. `name`: of
// the document; `frame`: as in check_document.
void check_before_run(const std::string& name, const std::string& text, std::optional<cv::Size> frame);

}  // namespace lm::host::detector::check
