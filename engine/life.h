// The life of a pixel: how long it has been still foreground. Pure; 32-bit floats throughout.
#pragma once

#include <cstdint>

namespace lm {

inline constexpr float leastLife = 1.0F;  // a smaller one does not decay
inline constexpr float lifeLoss = 0.8F;
inline constexpr std::int32_t lifeBand1 = 10;
// The upper bands are the variables THRESH_SAME_PIXEL_x2 and _x3, which begin as these.
inline constexpr std::int32_t lifeBand2 = 20;
inline constexpr std::int32_t lifeBand3 = 30;
inline constexpr float lifeGain1 = 1.0F;
inline constexpr float lifeGain2 = 0.5F;
inline constexpr float lifeGain3 = 0.2F;

constexpr float decayLife(float life) { return life >= leastLife ? life - lifeLoss : life; }

// Life of a foreground pixel whose frame difference is `change`: the smaller the difference, the larger the
// gain.
constexpr float gainLife(float life, std::int32_t change, std::int32_t band2, std::int32_t band3) {
  if (change <= lifeBand1) return life + lifeGain1;
  if (change <= band2) return life + lifeGain2;
  if (change <= band3) return life + lifeGain3;
  return decayLife(life);
}

}  // namespace lm
