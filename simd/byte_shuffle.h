// What the SSSE3 and SSE4.1 versions share. Internal linkage: each of the two sources has its own copy,
// compiled for its own level. Always inlined, so that its instructions are only in functions whose names
// state their level.
#pragma once

#include <cstddef>
#include <cstdint>

#include "simd/lanes.h"
#include "simd/rest.h"

// ---- temporal difference ----------------------------------------------------------------------------------

// Shuffle masks that extract one channel of 16 interleaved pixels: masks[t] moves the wanted bytes of the
// t-th 16 bytes to their positions among the 16 results and sets the others to 0.
template <std::ptrdiff_t channels>
[[gnu::always_inline]] static inline void makeGatherMasks(__m128i (&masks)[channels], int channel) {
  for (std::ptrdiff_t t = 0; t < channels; ++t) {
    std::uint8_t sources[16];
    for (std::ptrdiff_t i = 0; i < 16; ++i) {
      const std::ptrdiff_t source = i * channels + channel - t * 16;
      sources[i] = static_cast<std::uint8_t>(source >= 0 && source < 16 ? source : 0x80);
    }
    masks[t] = load16(sources);
  }
}

template <std::ptrdiff_t channels>
[[gnu::always_inline]] static inline __m128i gather(const std::uint8_t* pixels,
                                                    const __m128i (&masks)[channels]) {
  __m128i gathered = _mm_setzero_si128();
  for (std::ptrdiff_t t = 0; t < channels; ++t) {
    gathered = _mm_or_si128(gathered, _mm_shuffle_epi8(load16(pixels + t * 16), masks[t]));
  }
  return gathered;
}

// The whole blocks of 16 pixels among the first `pixels`.
template <std::ptrdiff_t channels>
[[gnu::always_inline]] static inline void diffBlocks(const std::uint8_t* a, const std::uint8_t* b,
                                                     std::uint8_t* out, std::ptrdiff_t pixels, int channel) {
  __m128i masks[channels];
  makeGatherMasks(masks, channel);
  for (; pixels >= 16; pixels -= 16) {
    const __m128i left = gather(a, masks);
    const __m128i right = gather(b, masks);
    // One of the two subtractions saturates to 0, the other gives the difference.
    store16(out, _mm_or_si128(_mm_subs_epu8(left, right), _mm_subs_epu8(right, left)));
    a += 16 * channels;
    b += 16 * channels;
    out += 16;
  }
}

// Whether the gather supports this layout. The strided loop does the others.
[[gnu::always_inline]] static inline bool canGather(int channels, int channel) {
  return channels == 1 ? channel == 0 : (channels == 3 || channels == 4) && channel >= 0 && channel <= 2;
}

[[gnu::always_inline]] static inline void diffByShuffle(const std::uint8_t* a, const std::uint8_t* b,
                                                        std::uint8_t* out, int width, int height,
                                                        int channels, int channel) {
  const std::ptrdiff_t total = lm::imageBytes(width, height, channels);
  std::ptrdiff_t pixels = 0;  // in whole blocks
  if (total > 0 && canGather(channels, channel)) {
    pixels = total / channels / 16 * 16;
    if (channels == 1) diffBlocks<1>(a, b, out, pixels, channel);
    if (channels == 3) diffBlocks<3>(a, b, out, pixels, channel);
    if (channels == 4) diffBlocks<4>(a, b, out, pixels, channel);
  }
  lm::stridedDiff(a, b, out + pixels, pixels * channels + channel, total, channels);
}

// ---- colour match -----------------------------------------------------------------------------------------

// The absolute differences of the three channels in 32-bit lanes; the fourth lane is 0.
[[gnu::always_inline]] static inline __m128i channelDifferences(const std::uint8_t* pixel,
                                                                const std::uint8_t* sample) {
  const __m128i p = _mm_setr_epi32(pixel[0], pixel[1], pixel[2], 0);
  const __m128i s = _mm_setr_epi32(sample[0], sample[1], sample[2], 0);
  return _mm_abs_epi32(_mm_sub_epi32(p, s));
}

[[gnu::always_inline]] static inline int sumOfLanes(__m128i lanes) {
  const __m128i pairs = _mm_hadd_epi32(lanes, lanes);
  return _mm_cvtsi128_si32(_mm_hadd_epi32(pairs, pairs));
}
