// AVX2 versions of object extraction's kernels.
#include <cassert>

#include "simd/avx2_lanes.h"
#include "simd/contracts.h"

namespace {

using std::size_t;

// The values of a mask, each in every byte of a vector.
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

// One bit for each byte of two vectors; each byte is 0 or 0xFF.
[[gnu::always_inline]] inline std::uint64_t wordOf(__m256i low, __m256i high) {
  return bitsOf(low) | std::uint64_t{bitsOf(high)} << 32;
}

[[gnu::always_inline]] inline void unpack32(std::uint8_t* bytes, const Values& values, std::uint32_t kept) {
  const __m256i before = load32(bytes);
  const __m256i set = values.isSet(before);
  if (_mm256_testz_si256(set, set) != 0) return;
  const __m256i after = _mm256_blendv_epi8(values.cleared, values.relabel, bytesOf(kept));
  store32(bytes, _mm256_blendv_epi8(before, after, set));
}

}  // namespace

namespace lm {

bool packRow_avx2(const std::uint8_t* row, size_t pixels, const MaskValues& values, std::uint64_t* set,
                  std::uint64_t* cleared) {
  assert(canPackRow(pixels, set, cleared));
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
  assert(canUnpackRow(pixels, kept));
  const Values wanted(values);
  for (; pixels >= wordPixels; pixels -= wordPixels, row += wordPixels, ++kept) {
    unpack32(row, wanted, static_cast<std::uint32_t>(*kept));
    unpack32(row + 32, wanted, static_cast<std::uint32_t>(*kept >> 32));
  }
  unpackRow_c(row, pixels, values, kept);
}

}  // namespace lm
