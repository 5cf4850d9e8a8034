// Boxes as JSON.
#pragma once

#include <json/json.h>

#include "host/events/box.h"

namespace lm::host::events {

// {"x","y","width","height"}
Json::Value box_value(const cv::Rect2d& box);

// The same with the objects in it: "id" if it is known, "others" if there are any.
Json::Value object_value(const Box& box);

}  // namespace lm::host::events
