// What was learned, as pictures.
#include <algorithm>
#include <cstring>

#include "compact/engine.h"

namespace lm::compact {
namespace {

// Calls act(x) for the columns of a row whose bits are set.
template <typename Act>
void forEachPixel(const std::uint32_t* words, std::size_t width, const Act& act) {
  for (std::size_t x = 0; x < width; ++x) {
    if ((words[x / blockPixels] >> (x % blockPixels) & 1) != 0) act(x);
  }
}

}  // namespace

void Engine::copyForeground(std::uint8_t* mask, std::size_t stride) const {
  const auto width = static_cast<std::size_t>(shape_.width);
  for (std::int32_t y = 0; y < shape_.height; ++y, mask += stride) {
    std::memset(mask, 0, width);
    if (const std::uint32_t* words = foreground(y)) {
      forEachPixel(words, width, [&](std::size_t x) { mask[x] = 255; });
    }
    if (y + 1 == shape_.height) return;
  }
}

void Engine::copyBackground(std::uint8_t* pixels, std::size_t stride) const {
  const auto width = static_cast<std::size_t>(shape_.width);
  const auto channels = static_cast<std::size_t>(shape_.channels);
  for (std::int32_t y = 0; y < shape_.height; ++y, pixels += stride) {
    std::memset(pixels, 0, shape_.rowBytes());
    const RowPlanes row = memory_.row(y);
    const auto copy = [&](std::size_t x) {
      for (std::size_t channel = 0; channel < shape_.planes(); ++channel) {
        pixels[x * channels + channel] = row.background[channel][x];
      }
    };
    forEachPixel(row.region, width, copy);
    if (!added_.empty()) {
      forEachPixel(added_.data() + static_cast<std::size_t>(y) * shape_.blocks(), width, copy);
    }
    if (y + 1 == shape_.height) return;
  }
}

}  // namespace lm::compact
