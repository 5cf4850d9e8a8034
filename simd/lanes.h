// 16-byte loads and stores. Internal linkage: each including source has its own copies, compiled for its own
// level. All are the unaligned forms: they are as fast as the aligned ones on aligned addresses and never
// fault.
#pragma once

#include <cstdint>

#include "simd/intrinsics.h"

[[gnu::always_inline]] static inline __m128i load16(const std::uint8_t* p) {
  return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
}

[[gnu::always_inline]] static inline void store16(std::uint8_t* p, __m128i bytes) {
  _mm_storeu_si128(reinterpret_cast<__m128i*>(p), bytes);
}
