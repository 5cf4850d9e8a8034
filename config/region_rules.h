// How the lists of regions in a configuration document are read.
#pragma once

#include <cstdint>
#include <string>

#include "engine/rules.h"

namespace lm {

struct RegionList {
  const char* key;
  std::uint32_t leastPoints;  // a region with fewer has none
};
inline constexpr RegionList includedRegions = {"roi", 3};
// Kept: an exclusion region takes its points however few they are.
inline constexpr RegionList excludedRegions = {"ror", 0};

// A coordinate: a fraction of `side`, in pixels. Not clamped to the frame. Throws std::invalid_argument or
// std::out_of_range.
inline std::int32_t toPixels(const std::string& fraction, std::int32_t side) {
  return toInt32(static_cast<float>(side) * std::stof(fraction));
}

}  // namespace lm
