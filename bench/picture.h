// The whole-frame table as a picture.
#pragma once

#include <string>

#include "bench/records.h"

namespace lm::bench {

// Bars for each scene at `size`, in milliseconds, worst scene first. `note`: a line at the bottom.
// Throws std::runtime_error.
void draw_picture(const Records& records, const std::string& size, const std::string& note,
                  const std::string& file);

}  // namespace lm::bench
