// Versions for SSSE3.
#include "simd/byte_shuffle.h"
#include "simd/simd.h"

namespace simd {

void genRdDiff_ssse3(const std::uint8_t* a, const std::uint8_t* b, std::uint8_t* out, int width, int height,
                     int channels, int channel) {
  diffByShuffle(a, b, out, width, height, channels, channel);
}

int isMatchVal_bgr24_ssse3(const std::uint8_t* pixel, const std::uint8_t* sample, int radius) {
  const __m128i differences = channelDifferences(pixel, sample);
  const __m128i exceeds = _mm_cmpgt_epi32(differences, _mm_set1_epi32(radius));
  return _mm_movemask_epi8(exceeds) != 0 ? -1 : sumOfLanes(differences);
}

}  // namespace simd
