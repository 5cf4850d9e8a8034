// The outcome as a picture: a row for each setting, with what it found when.
#pragma once

#include <opencv2/core.hpp>

#include "host/commands/tune/outcome.h"

namespace lm::host::commands::tune {

cv::Mat picture_of(const Outcome& outcome);

}  // namespace lm::host::commands::tune
