// Versions for SSE4.1.
#include "simd/byte_shuffle.h"
#include "simd/lanes.h"
#include "simd/rest.h"
#include "simd/simd.h"

namespace simd {

void replace_if_u8_sse41(std::uint8_t* begin, std::uint8_t* end, std::uint8_t from, std::uint8_t to) {
  const __m128i old = _mm_set1_epi8(static_cast<char>(from));
  const __m128i replacement = _mm_set1_epi8(static_cast<char>(to));
  for (; end - begin >= 16; begin += 16) {
    const __m128i bytes = load16(begin);
    store16(begin, _mm_blendv_epi8(bytes, replacement, _mm_cmpeq_epi8(bytes, old)));
  }
  replace_if_u8_c(begin, end, from, to);
}

void genRdDiff_sse41(const std::uint8_t* a, const std::uint8_t* b, std::uint8_t* out, int width, int height,
                     int channels, int channel) {
  diffByShuffle(a, b, out, width, height, channels, channel);
}

void pruneFgByRoi_sse41(std::uint8_t* mask, const std::uint8_t* roi, int count) {
  lm::pruneTail(mask, roi, count, 16);
}

int isMatchVal_bgr24_sse41(const std::uint8_t* pixel, const std::uint8_t* sample, int radius) {
  const __m128i differences = channelDifferences(pixel, sample);
  const __m128i exceeds = _mm_cmpgt_epi32(differences, _mm_set1_epi32(radius));
  return _mm_test_all_zeros(exceeds, exceeds) != 0 ? sumOfLanes(differences) : -1;
}

}  // namespace simd
