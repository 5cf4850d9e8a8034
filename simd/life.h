// The life of a pixel: how long it has been still foreground. Pure; 32-bit floats throughout.
#pragma once

#include <cstdint>

namespace lm {

constexpr float decayLife(float life) { return life >= 1.0F ? life - 0.8F : life; }

// Life of a foreground pixel whose frame difference is `change`: the smaller the difference, the larger the
// gain.
constexpr float gainLife(float life, std::int32_t change, std::int32_t band2, std::int32_t band3) {
  if (change <= 10) return life + 1.0F;
  if (change <= band2) return life + 0.5F;
  if (change <= band3) return life + 0.2F;
  return decayLife(life);
}

}  // namespace lm
