// Versions for AVX2.
#include "simd/intrinsics.h"
#include "simd/rest.h"
#include "simd/simd.h"

namespace simd {

void replace_if_u8_avx2(std::uint8_t* begin, std::uint8_t* end, std::uint8_t from, std::uint8_t to) {
  const __m256i old = _mm256_set1_epi8(static_cast<char>(from));
  const __m256i replacement = _mm256_set1_epi8(static_cast<char>(to));
  for (; end - begin >= 32; begin += 32) {
    auto* const block = reinterpret_cast<__m256i*>(begin);
    const __m256i bytes = _mm256_loadu_si256(block);
    const __m256i match = _mm256_cmpeq_epi8(bytes, old);
    // Most blocks hold nothing to replace; skipping the store avoids a write-back.
    if (_mm256_testz_si256(match, match) != 0) continue;
    _mm256_storeu_si256(block, _mm256_blendv_epi8(bytes, replacement, match));
  }
  replace_if_u8_c(begin, end, from, to);
}

void pruneFgByRoi_avx2(std::uint8_t* mask, const std::uint8_t* roi, int count) {
  lm::pruneTail(mask, roi, count, 32);
}

}  // namespace simd
