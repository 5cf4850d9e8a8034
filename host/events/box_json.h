// Boxes as JSON.
#pragma once

#include <json/json.h>

#include <opencv2/core.hpp>

namespace lm::host::events {

// {"x","y","width","height"}
Json::Value box_value(const cv::Rect2d& box);

}  // namespace lm::host::events
