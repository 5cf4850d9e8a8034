// What was learned, as pictures.
#include <algorithm>
#include <bit>
#include <cstring>

#include "compact/engine.h"

namespace lm::compact {
namespace {

// Calls act(x, length) for runs of set bits, none longer than a block, from column `first` up to `end` of a
// row.
template <typename Act>
void forEachRun(const std::uint32_t* words, std::size_t first, std::size_t end, const Act& act) {
  for (std::size_t x = first; x < end;) {
    const std::size_t bit = x % blockPixels;
    const std::size_t left = std::min(end - x, blockPixels - bit);
    const std::uint32_t word = words[x / blockPixels] >> bit;
    const auto clear = std::min<std::size_t>(left, static_cast<std::size_t>(std::countr_zero(word)));
    const std::uint32_t rest = clear < blockPixels ? word >> clear : 0;
    const auto set = std::min<std::size_t>(left - clear, static_cast<std::size_t>(std::countr_one(rest)));
    if (set != 0) act(x + clear, set);
    x += clear + set;
  }
}

}  // namespace

void Engine::copyForeground(const Area& area, std::uint8_t* mask, std::size_t stride) const {
  const auto first = static_cast<std::size_t>(area.x);
  const auto width = static_cast<std::size_t>(area.width);
  for (std::int32_t i = 0; i < area.height; ++i) {
    std::uint8_t* to = mask + static_cast<std::size_t>(i) * stride;
    std::memset(to, 0, width);
    if (const std::uint32_t* words = foreground(area.y + i)) {
      forEachRun(words, first, first + width,
                 [&](std::size_t x, std::size_t length) { std::memset(to + (x - first), 255, length); });
    }
  }
}

void Engine::copyBackground(const Area& area, std::uint8_t* pixels, std::size_t stride) const {
  const auto first = static_cast<std::size_t>(area.x);
  const auto width = static_cast<std::size_t>(area.width);
  const auto channels = static_cast<std::size_t>(shape_.channels);
  for (std::int32_t i = 0; i < area.height; ++i) {
    std::uint8_t* to = pixels + static_cast<std::size_t>(i) * stride;
    std::memset(to, 0, width * channels);
    const std::int32_t y = area.y + i;
    const RowPlanes row = memory_.row(y);
    const auto copy = [&](std::size_t x, std::size_t length) {
      for (std::size_t channel = 0; channel < shape_.planes(); ++channel) {
        const std::uint8_t* from = row.background[channel] + x;
        std::uint8_t* place = to + (x - first) * channels + channel;
        for (std::size_t k = 0; k < length; ++k) place[k * channels] = from[k];
      }
    };
    forEachRun(row.region, first, first + width, copy);
    if (!added_.empty())
      forEachRun(added_.data() + static_cast<std::size_t>(y) * shape_.blocks(), first, first + width, copy);
  }
}

}  // namespace lm::compact
