// 32 bytes at a time. The intrinsics are those of AVX2; below that level SIMDe composes them of what there
// is.
//
// This header and the three *_row.h that use it are compiled once for every level (avx2.cpp, sse41.cpp,
// sse2.cpp): LIGHTMOTION_LEVEL names the namespace. What they define has internal linkage and they call no
// inline functions of others, so that no instruction of a level gets into code that all levels share.
#pragma once

#ifndef SIMDE_ENABLE_NATIVE_ALIASES
#define SIMDE_ENABLE_NATIVE_ALIASES
#endif
#include <simde/x86/avx2.h>

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "compact/kernels.h"

namespace lm::compact::LIGHTMOTION_LEVEL {
namespace {

using std::size_t;
using std::uint32_t;
using std::uint8_t;

[[gnu::always_inline]] inline __m256i load32(const void* bytes) {
  return _mm256_loadu_si256(static_cast<const __m256i*>(bytes));
}
[[gnu::always_inline]] inline void store32(void* bytes, __m256i value) {
  _mm256_storeu_si256(static_cast<__m256i*>(bytes), value);
}
[[gnu::always_inline]] inline __m256i every(uint8_t byte) {
  return _mm256_set1_epi8(static_cast<char>(byte));
}
[[gnu::always_inline]] inline void prefetch(const void* bytes) {
  _mm_prefetch(static_cast<const char*>(bytes), _MM_HINT_T0);
}
// The absolute differences of bytes: one of the two subtractions saturates to 0.
[[gnu::always_inline]] inline __m256i differenceOf(__m256i a, __m256i b) {
  return _mm256_or_si256(_mm256_subs_epu8(a, b), _mm256_subs_epu8(b, a));
}
// 0xFF in the bytes that are at most (at least) the limit.
[[gnu::always_inline]] inline __m256i isAtMost(__m256i bytes, __m256i limit) {
  return _mm256_cmpeq_epi8(_mm256_max_epu8(bytes, limit), limit);
}
[[gnu::always_inline]] inline __m256i isAtLeast(__m256i bytes, __m256i limit) {
  return _mm256_cmpeq_epi8(_mm256_max_epu8(bytes, limit), bytes);
}
// One bit for each byte, which is 0 or 0xFF.
[[gnu::always_inline]] inline uint32_t bitsOf(__m256i bytes) {
  return static_cast<uint32_t>(_mm256_movemask_epi8(bytes));
}
inline constexpr bool bigEndian = __BYTE_ORDER__ == __ORDER_BIG_ENDIAN__;

// 0xFF in the bytes whose bits are set.
[[gnu::always_inline]] inline __m256i bytesOf(uint32_t bits) {
  if constexpr (bigEndian) bits = __builtin_bswap32(bits);
  const __m256i spread =
      _mm256_shuffle_epi8(_mm256_set1_epi32(static_cast<int>(bits)),
                          _mm256_setr_epi8(0, 0, 0, 0, 0, 0, 0, 0, 1, 1, 1, 1, 1, 1, 1, 1, 2, 2, 2, 2, 2, 2,
                                           2, 2, 3, 3, 3, 3, 3, 3, 3, 3));
  constexpr unsigned long long eachByte = bigEndian ? 0x0102040810204080ULL : 0x8040201008040201ULL;
  const __m256i each = _mm256_set1_epi64x(static_cast<long long>(eachByte));
  return _mm256_cmpeq_epi8(_mm256_and_si256(spread, each), each);
}

// The channels of 32 pixels of a frame, as the frame holds them.
template <int channels>
struct Pixels;

template <>
struct Pixels<1> {
  __m256i bytes;
  [[gnu::always_inline]] static Pixels of(const uint8_t* pixels) { return {load32(pixels)}; }
};

template <>
struct Pixels<3> {
  __m256i first, second, third;  // bytes 0-15, 16-31, 32-47 of pixels 0-15, then of 16-31
  [[gnu::always_inline]] static Pixels of(const uint8_t* pixels) {
    const __m256i a = load32(pixels);
    const __m256i b = load32(pixels + 32);
    const __m256i c = load32(pixels + 64);
    return {_mm256_blend_epi32(a, b, 0xF0), _mm256_permute2x128_si256(a, c, 0x21),
            _mm256_blend_epi32(b, c, 0xF0)};
  }
};

template <>
struct Pixels<4> {
  __m256i a, b, c, d;
  [[gnu::always_inline]] static Pixels of(const uint8_t* pixels) {
    return {load32(pixels), load32(pixels + 32), load32(pixels + 64), load32(pixels + 96)};
  }
};

// Extracts one channel of 32 pixels.
template <int channels>
struct ChannelOf;

template <>
struct ChannelOf<1> {
  explicit ChannelOf(int /*channel*/) {}
  [[gnu::always_inline]] __m256i operator()(const Pixels<1>& pixels) const { return pixels.bytes; }
};

// 3 and 16 are coprime, so the wanted bytes of 48 occupy distinct positions modulo 16: blend, then one
// shuffle.
template <>
struct ChannelOf<3> {
  __m256i fromSecond, fromThird, order;
  explicit ChannelOf(int channel) {
    uint8_t second[32];
    uint8_t third[32];
    uint8_t sources[32];
    for (int i = 0; i < 32; ++i) {
      const int byte = i % 16;
      second[i] = (byte + 16) % 3 == channel ? 0xFF : 0;
      third[i] = (byte + 32) % 3 == channel ? 0xFF : 0;
      sources[i] = static_cast<uint8_t>((3 * byte + channel) % 16);
    }
    fromSecond = load32(second);
    fromThird = load32(third);
    order = load32(sources);
  }
  [[gnu::always_inline]] __m256i operator()(const Pixels<3>& pixels) const {
    const __m256i wanted = _mm256_blendv_epi8(_mm256_blendv_epi8(pixels.first, pixels.second, fromSecond),
                                              pixels.third, fromThird);
    return _mm256_shuffle_epi8(wanted, order);
  }
};

template <>
struct ChannelOf<4> {
  int shift;
  explicit ChannelOf(int channel) : shift(8 * (bigEndian ? 3 - channel : channel)) {}
  [[gnu::always_inline]] __m256i operator()(const Pixels<4>& pixels) const {
    const __m256i lowest = _mm256_set1_epi32(0xFF);
    // SIMDe reads the count from 64 bits.
    const __m128i count = bigEndian ? _mm_cvtsi64_si128(shift) : _mm_cvtsi32_si128(shift);
    const __m256i a = _mm256_and_si256(_mm256_srl_epi32(pixels.a, count), lowest);
    const __m256i b = _mm256_and_si256(_mm256_srl_epi32(pixels.b, count), lowest);
    const __m256i c = _mm256_and_si256(_mm256_srl_epi32(pixels.c, count), lowest);
    const __m256i d = _mm256_and_si256(_mm256_srl_epi32(pixels.d, count), lowest);
    const __m256i packed = _mm256_packus_epi16(_mm256_packus_epi32(a, b), _mm256_packus_epi32(c, d));
    // The packs work in halves: put the groups of four pixels back into order.
    return _mm256_permutevar8x32_epi32(packed, _mm256_setr_epi32(0, 4, 1, 5, 2, 6, 3, 7));
  }
};

// Pixels of a block without reading beyond the frame: a block that reaches beyond it is copied first, 0 in
// the place of what is missing.
template <int channels>
class BlockReader {
 public:
  // `left`: pixels of the frame from `pixels` on.
  BlockReader(const uint8_t* pixels, size_t left) : pixels_(pixels), left_(left) {}
  // `first`: of the block, counted from `pixels`.
  [[gnu::always_inline]] Pixels<channels> operator()(size_t first) {
    if (first + blockPixels <= left_) return Pixels<channels>::of(pixels_ + first * channels);
    uint8_t copy[blockPixels * channels] = {};
    std::memcpy(copy, pixels_ + first * channels, (left_ - first) * channels);
    return Pixels<channels>::of(copy);
  }

 private:
  const uint8_t* pixels_;
  size_t left_;
};

// The first set bit.
[[gnu::always_inline]] inline size_t firstOf(uint32_t bits) {
  return static_cast<size_t>(__builtin_ctz(bits));
}

[[gnu::always_inline]] inline size_t bytesOfSamples(size_t planes) {
  return samplesPerPixel * planes * blockPixels;
}

}  // namespace
}  // namespace lm::compact::LIGHTMOTION_LEVEL
