// The outcome as a picture: a row for each setting, with what it found when.
#pragma once

#include <opencv2/core.hpp>

#include "host/tune/outcome.h"

namespace lm::host::tune {

cv::Mat picture_of(const Outcome& outcome);

}  // namespace lm::host::tune
