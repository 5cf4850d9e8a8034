// Seeding the samples from the first frame.
#pragma once

#include "compact/lanes.h"

namespace lm::compact::LIGHTMOTION_LEVEL {
namespace {

template <int channels>
void split(const uint8_t* pixels, size_t width, uint8_t* const* to) {
  constexpr size_t planes = channels == 1 ? 1 : maxChannels;
  BlockReader<channels> read(pixels, width);
  for (size_t channel = 0; channel < planes; ++channel) {
    const ChannelOf<channels> extract(static_cast<int>(channel));
    for (size_t at = 0; at < width; at += blockPixels) store32(to[channel] + at, extract(read(at)));
  }
}

}  // namespace

// Once per level. NOLINTNEXTLINE(misc-definitions-in-headers)
void splitRow(std::int32_t channels, const uint8_t* pixels, size_t width, uint8_t* const* to) {
  switch (channels) {
    case 1:
      return split<1>(pixels, width, to);
    case 3:
      return split<3>(pixels, width, to);
    default:
      return split<4>(pixels, width, to);
  }
}

// Once per level. NOLINTNEXTLINE(misc-definitions-in-headers)
void seedRow(size_t planes, const uint8_t* const (*rows)[maxChannels], BlockRange blocks, uint8_t* samples) {
  // The pixel itself, then its neighbours: x from -2, and for each x five rows.
  const auto fill = [&](size_t block, size_t slot, size_t row, std::ptrdiff_t dx) {
    uint8_t* to = samples + block * bytesOfSamples(planes) + slot * planes * blockPixels;
    const auto from = static_cast<std::ptrdiff_t>(block * blockPixels) + dx;
    for (size_t channel = 0; channel < planes; ++channel) {
      store32(to + channel * blockPixels, load32(rows[row][channel] + from));
    }
  };
  for (size_t block = blocks.begin; block < blocks.end; ++block) {
    fill(block, 0, 2, 0);
    for (size_t slot = 1; slot < samplesPerPixel; ++slot) {
      const size_t entry = slot - 1;
      fill(block, slot, entry % 5, static_cast<std::ptrdiff_t>(entry / 5) - 2);
    }
  }
}

}  // namespace lm::compact::LIGHTMOTION_LEVEL
