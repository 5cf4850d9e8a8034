// Rules for the region lists of a configuration document.
#pragma once

#include <cstdint>

#include "base/integers.h"

namespace lm {

struct RegionList {
  const char* key;
  std::uint32_t leastPoints;  // a region with fewer is read without points
};
inline constexpr RegionList includedRegions = {"roi", 3};
// Kept: an exclusion region accepts any number of points.
inline constexpr RegionList excludedRegions = {"ror", 0};

// Converts a fraction of `side` to pixels. Not clamped to the frame.
constexpr std::int32_t toPixels(float fraction, std::int32_t side) {
  return toInt32(static_cast<float>(side) * fraction);
}

}  // namespace lm
