// AVX2 versions of object extraction's kernels.
#include <immintrin.h>

#include "simd/mask_kernels.h"

namespace {

using std::size_t;

// The values of a mask, in every byte of a vector.
struct Values {
  __m256i set;
  __m256i relabel;
  __m256i cleared;

  [[gnu::always_inline]] explicit Values(const lm::MaskValues& values)
      : set(_mm256_set1_epi8(static_cast<char>(values.set))),
        relabel(_mm256_set1_epi8(static_cast<char>(values.relabel))),
        cleared(_mm256_set1_epi8(static_cast<char>(values.cleared))) {}

  [[gnu::always_inline]] __m256i isSet(__m256i bytes) const {
    return _mm256_or_si256(_mm256_cmpeq_epi8(bytes, set), _mm256_cmpeq_epi8(bytes, relabel));
  }
  [[gnu::always_inline]] __m256i isCleared(__m256i bytes) const { return _mm256_cmpeq_epi8(bytes, cleared); }
};

[[gnu::always_inline]] inline __m256i load32(const std::uint8_t* bytes) {
  return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(bytes));
}

// One bit for each byte of two vectors; bytes are 0 or 255.
[[gnu::always_inline]] inline std::uint64_t wordOf(__m256i low, __m256i high) {
  return static_cast<std::uint32_t>(_mm256_movemask_epi8(low)) |
         static_cast<std::uint64_t>(static_cast<std::uint32_t>(_mm256_movemask_epi8(high))) << 32;
}

// 255 in the bytes whose bit is 1.
[[gnu::always_inline]] inline __m256i bytesOf(std::uint32_t bits) {
  const __m256i eachByteEightTimes =
      _mm256_setr_epi64x(0, 0x0101010101010101, 0x0202020202020202, 0x0303030303030303);
  const __m256i ownBit = _mm256_set1_epi64x(static_cast<long long>(0x8040201008040201ULL));
  const __m256i spread = _mm256_shuffle_epi8(_mm256_set1_epi32(static_cast<int>(bits)), eachByteEightTimes);
  return _mm256_cmpeq_epi8(_mm256_and_si256(spread, ownBit), ownBit);
}

[[gnu::always_inline]] inline void unpack32(std::uint8_t* bytes, const Values& values, std::uint32_t kept) {
  const __m256i before = load32(bytes);
  const __m256i set = values.isSet(before);
  if (_mm256_testz_si256(set, set) != 0) return;
  const __m256i after = _mm256_blendv_epi8(values.cleared, values.relabel, bytesOf(kept));
  _mm256_storeu_si256(reinterpret_cast<__m256i*>(bytes), _mm256_blendv_epi8(before, after, set));
}

}  // namespace

namespace lm {

bool packRow_avx2(const std::uint8_t* row, size_t pixels, const MaskValues& values, std::uint64_t* set,
                  std::uint64_t* cleared) {
  const Values wanted(values);
  std::uint64_t held = 0;
  for (; pixels >= wordPixels; pixels -= wordPixels, row += wordPixels, ++set, ++cleared) {
    const __m256i low = load32(row);
    const __m256i high = load32(row + 32);
    *set = wordOf(wanted.isSet(low), wanted.isSet(high));
    *cleared = wordOf(wanted.isCleared(low), wanted.isCleared(high));
    held |= *set | ~*cleared;
  }
  const bool restHolds = packRow_c(row, pixels, values, set, cleared);
  return restHolds || held != 0;
}

void unpackRow_avx2(std::uint8_t* row, size_t pixels, const MaskValues& values, const std::uint64_t* kept) {
  const Values wanted(values);
  for (; pixels >= wordPixels; pixels -= wordPixels, row += wordPixels, ++kept) {
    unpack32(row, wanted, static_cast<std::uint32_t>(*kept));
    unpack32(row + 32, wanted, static_cast<std::uint32_t>(*kept >> 32));
  }
  unpackRow_c(row, pixels, values, kept);
}

}  // namespace lm
