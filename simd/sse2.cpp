// Versions for SSE2, the base of x86-64.
#include "simd/lanes.h"
#include "simd/rest.h"
#include "simd/simd.h"

namespace simd {

void replace_if_u8_sse2(std::uint8_t* begin, std::uint8_t* end, std::uint8_t from, std::uint8_t to) {
  const __m128i old = _mm_set1_epi8(static_cast<char>(from));
  const __m128i replacement = _mm_set1_epi8(static_cast<char>(to));
  for (; end - begin >= 16; begin += 16) {
    const __m128i bytes = load16(begin);
    const __m128i match = _mm_cmpeq_epi8(bytes, old);
    store16(begin, _mm_or_si128(_mm_and_si128(match, replacement), _mm_andnot_si128(match, bytes)));
  }
  replace_if_u8_c(begin, end, from, to);
}

void pruneFgByRoi_sse2(std::uint8_t* mask, const std::uint8_t* roi, int count) {
  lm::pruneTail(mask, roi, count, 16);
}

// Kept: the last w mod 16 columns of a row are ignored. Every processor has this version, so callers depend
// on this.
bool isTouch_sse2(std::tuple<int, int, int, int> box, const std::uint8_t* first, const std::uint8_t* second,
                  int stride, int /*height*/) {
  const auto [x, y, w, h] = box;
  const int columns = w - w % 16;
  const __m128i foreground = _mm_set1_epi8(-1);
  const __m128i inside = _mm_set1_epi8(1);
  for (int r = 0; r < h; ++r) {
    const std::ptrdiff_t row = (std::ptrdiff_t{y} + r) * stride + x;
    for (int c = 0; c < columns; c += 16) {
      const __m128i touch = _mm_and_si128(_mm_cmpeq_epi8(load16(first + row + c), foreground),
                                          _mm_cmpeq_epi8(load16(second + row + c), inside));
      if (_mm_movemask_epi8(touch) != 0) return true;
    }
  }
  return false;
}

}  // namespace simd
