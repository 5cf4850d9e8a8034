// The result document.
#pragma once

#include <json/forwards.h>

#include <vector>

#include "objects/box.h"

// Fills `root` (null on entry): "timestamp" with the text (not null) and "object" with one object for each
// box, in order: "x", "y", "width", "height" as given, converted to double, and "inRoi" with the box's names.
// Omits boxes with a coordinate that is not finite; "object" is null when no box remains.
void write_query_result_data(const std::vector<boxRect>& boxes, const char* timestamp, Json::Value& root);
