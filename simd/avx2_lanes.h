// What the AVX2 sources share: 32 pixels at a time. Internal linkage and always inlined: each including
// source has its own copies, and their instructions are only in functions whose names state the level.
#pragma once

#include <immintrin.h>

#include <cstddef>
#include <cstdint>

#include "simd/model_kernels.h"

[[gnu::always_inline]] static inline __m256i load32(const std::uint8_t* bytes) {
  return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(bytes));
}

[[gnu::always_inline]] static inline void store32(std::uint8_t* bytes, __m256i value) {
  _mm256_storeu_si256(reinterpret_cast<__m256i*>(bytes), value);
}

[[gnu::always_inline]] static inline __m256i isZero(__m256i bytes) {
  return _mm256_cmpeq_epi8(bytes, _mm256_setzero_si256());
}

// The absolute differences of bytes: one of the two subtractions saturates to 0.
[[gnu::always_inline]] static inline __m256i differenceOf(__m256i a, __m256i b) {
  return _mm256_or_si256(_mm256_subs_epu8(a, b), _mm256_subs_epu8(b, a));
}

// One bit for each byte, which is 0 or 0xFF.
[[gnu::always_inline]] static inline std::uint32_t bitsOf(__m256i bytes) {
  return static_cast<std::uint32_t>(_mm256_movemask_epi8(bytes));
}

// 0xFF in the bytes whose bits are set.
[[gnu::always_inline]] static inline __m256i bytesOf(std::uint32_t bits) {
  const __m256i spread =
      _mm256_shuffle_epi8(_mm256_set1_epi32(static_cast<int>(bits)),
                          _mm256_setr_epi8(0, 0, 0, 0, 0, 0, 0, 0, 1, 1, 1, 1, 1, 1, 1, 1, 2, 2, 2, 2, 2, 2,
                                           2, 2, 3, 3, 3, 3, 3, 3, 3, 3));
  const __m256i each = _mm256_set1_epi64x(static_cast<long long>(0x8040201008040201ULL));
  return _mm256_cmpeq_epi8(_mm256_and_si256(spread, each), each);
}

// A threshold for bytes. No byte is at most a negative one.
struct ByteThreshold {
  __m256i limit;
  __m256i never;
};

[[gnu::always_inline]] static inline ByteThreshold thresholdOf(std::int32_t threshold) {
  const int limit = threshold > 255 ? 255 : threshold < 0 ? 0 : threshold;
  return {_mm256_set1_epi8(static_cast<char>(limit)), _mm256_set1_epi8(threshold < 0 ? -1 : 0)};
}

// 0xFF in the bytes that are at most the threshold.
[[gnu::always_inline]] static inline __m256i isAtMost(__m256i bytes, const ByteThreshold& threshold) {
  const __m256i below = _mm256_cmpeq_epi8(_mm256_max_epu8(bytes, threshold.limit), threshold.limit);
  return _mm256_andnot_si256(threshold.never, below);
}

// The first position from `from` on, in steps of four blocks, whose four blocks hold something other than 0,
// or where fewer than four blocks are left before `end`.
[[gnu::always_inline]] static inline std::size_t skipZeros(const std::uint8_t* bytes, std::size_t from,
                                                           std::size_t end) {
  for (; from + 4 * lm::blockPixels <= end; from += 4 * lm::blockPixels) {
    const std::uint8_t* four = bytes + from;
    const __m256i any = _mm256_or_si256(_mm256_or_si256(load32(four), load32(four + 32)),
                                        _mm256_or_si256(load32(four + 64), load32(four + 96)));
    if (_mm256_testz_si256(any, any) == 0) break;
  }
  return from;
}

// Prefetches the block that lies 64 blocks after the one at `begin`: the kernels read more planes at once
// than the hardware prefetcher follows. Prefetches to L2; L1 has too few fill buffers. The address may be
// past the plane's end: nothing is read.
template <typename T>
[[gnu::always_inline]] static inline void prefetchAhead(const T* plane, std::size_t begin) {
  constexpr std::size_t ahead = 64 * lm::blockPixels;
  const auto address = reinterpret_cast<std::uintptr_t>(plane) + (begin + ahead) * sizeof(T);
  for (std::size_t at = 0; at < lm::blockPixels * sizeof(T); at += 64) {
    // A number, because a pointer must not leave its array. NOLINTNEXTLINE(performance-no-int-to-ptr)
    _mm_prefetch(reinterpret_cast<const char*>(address + at), _MM_HINT_T1);
  }
}
