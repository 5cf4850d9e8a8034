// How the lists of regions in a configuration document are read.
#pragma once

#include <cstdint>

#include "base/integers.h"

namespace lm {

struct RegionList {
  const char* key;
  std::uint32_t leastPoints;  // a region with fewer has none
};
inline constexpr RegionList includedRegions = {"roi", 3};
// Kept: an exclusion region takes its points however few they are.
inline constexpr RegionList excludedRegions = {"ror", 0};

// A coordinate: a fraction of `side`, in pixels. Not clamped to the frame.
constexpr std::int32_t toPixels(float fraction, std::int32_t side) {
  return toInt32(static_cast<float>(side) * fraction);
}

}  // namespace lm
