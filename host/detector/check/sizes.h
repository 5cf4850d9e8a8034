// The frame size in a configuration document.
#pragma once

#include <opencv2/core.hpp>
#include <optional>

#include "config/check/findings.h"
#include "config/check/scalars.h"

namespace Json {
class Value;
}

namespace lm::host::detector::check {

using lm::check::Findings;

struct SettledSizes {
  std::optional<cv::Size> frame;  // that the plug-in will use, if known
  lm::check::SizeTexts texts;     // of each setting, as the program passes it to the plug-in
};

// Reports invalid frame sizes, and sizes other than the source's. `frame`: the source's, if there is a
// source.
SettledSizes check_sizes(const Json::Value& document, std::optional<cv::Size> frame, Findings& findings);

}  // namespace lm::host::detector::check
