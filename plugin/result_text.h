// The result document as a text.
#pragma once

#include <string>
#include <vector>

#include "objects/box.h"

namespace lm {

// One line of JSON and a line feed; ends before the first NUL. `timestamp` must not be null.
std::string resultText(const std::vector<boxRect>& boxes, const char* timestamp);

}  // namespace lm
