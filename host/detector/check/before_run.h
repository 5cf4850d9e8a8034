// What a run says of its configuration before it starts.
#pragma once

#include <opencv2/core.hpp>
#include <optional>
#include <string>

namespace lm::host::detector::check {

// Warnings go to standard error, a line each. Throws Failure (kRefused) with the first error. `name`: of the
// document; `frame`: as in check_document.
void tell_before_run(const std::string& name, const std::string& text, std::optional<cv::Size> frame);

}  // namespace lm::host::detector::check
