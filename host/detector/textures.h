// Where the picture has the texture of the ground, and where another one.
#pragma once

#include "host/detector/gains.h"

namespace lm::host::detector {

struct Textures {
  cv::Mat_<std::uint8_t> kept, another;  // 255 or 0; both 0 where there is too little texture to decide
};

// `sigma`: noise of the frame, in grey levels.
Textures textures_of(const Gains& gains, double sigma);

}  // namespace lm::host::detector
