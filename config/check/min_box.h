// The minimum box size at the frame size.
#pragma once

#include <cstdint>

#include "config/check/coverage.h"
#include "config/document.h"
#include "config/settings.h"

namespace Json {
class Value;
}

namespace lm::check {

class Findings;

struct MinBox {
  std::int32_t width = 0, height = 0;  // pixels; a box below both is dropped
};
MinBox minBoxOf(const Settings& settings, const FrameSize& frame);

// Reports a minimum that drops nothing, or everything. `coverage` may be null.
void checkMinBox(const Json::Value& document, const MinBox& least, const FrameSize& frame,
                 const Coverage* coverage, Findings& findings);

}  // namespace lm::check
