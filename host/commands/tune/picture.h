// The outcome as a picture: a row per setting with its boxes over time.
#pragma once

#include <opencv2/core.hpp>

#include "host/commands/tune/outcome.h"

namespace lm::host::commands::tune {

cv::Mat picture_of(const Outcome& outcome);

}  // namespace lm::host::commands::tune
