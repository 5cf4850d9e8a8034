// AVX2 version of matching pixels with their samples.
#include <cassert>

#include "simd/avx2_lanes.h"
#include "simd/contracts.h"

namespace {

using std::size_t;

struct Matcher {
  __m256i compared;  // 0xFF in the bytes of a sample that are compared
  __m256i radius;    // of each byte; 0xFF in those that are not compared

  [[gnu::always_inline]] explicit Matcher(const lm::MatchRule& rule)
      : compared(_mm256_set1_epi32(rule.channels == 1 ? 0xFF : 0xFFFFFF)),
        radius(_mm256_or_si256(_mm256_set1_epi8(static_cast<char>(rule.radius > 255 ? 255 : rule.radius)),
                               _mm256_xor_si256(compared, _mm256_set1_epi8(-1)))) {}

  // All bits of the lanes whose sample, of the eight at `samples`, matches. `pixel`: in every lane.
  [[gnu::always_inline]] __m256i operator()(const std::uint8_t* samples, __m256i pixel) const {
    const __m256i group = load32(samples);
    const __m256i difference = differenceOf(group, pixel);
    return _mm256_cmpeq_epi32(_mm256_subs_epu8(difference, radius), _mm256_setzero_si256());
  }

  [[gnu::always_inline]] std::uint32_t distance(const std::uint8_t* sample, __m256i pixel) const {
    const __m128i bytes = _mm256_castsi256_si128(compared);
    const __m128i a = _mm_and_si128(_mm_loadu_si32(sample), bytes);
    const __m128i b =
        _mm_and_si128(_mm_and_si128(_mm256_castsi256_si128(pixel), bytes), _mm_setr_epi32(-1, 0, 0, 0));
    return static_cast<std::uint32_t>(_mm_cvtsi128_si32(_mm_sad_epu8(a, b)));
  }
};

[[gnu::always_inline]] inline std::uint32_t lanesThatMatch(__m256i matches) {
  return static_cast<std::uint32_t>(_mm256_movemask_ps(_mm256_castsi256_ps(matches)));
}

// Compares all samples of a pixel, then visits those that match, in order.
[[gnu::always_inline]] inline bool matchPixel(const Matcher& matcher, const std::uint8_t* samples,
                                              std::uint32_t value, std::int32_t needed,
                                              std::uint32_t& minDist) {
  // The last group starts four slots early, so that it ends at the pixel's last sample.
  constexpr size_t second = 8;
  constexpr size_t third = lm::samplesPerPixel - 8;
  const __m256i pixel = _mm256_set1_epi32(static_cast<int>(value));
  const __m256i a = matcher(samples, pixel);
  const __m256i b = matcher(samples + 4 * second, pixel);
  const __m256i c = matcher(samples + 4 * third, pixel);
  std::uint32_t nearest = lm::nothingMatched;
  const __m256i any = _mm256_or_si256(_mm256_or_si256(a, b), c);
  if (_mm256_testz_si256(any, any) != 0) {
    minDist = nearest;
    return false;
  }
  std::uint32_t matched = lanesThatMatch(a) | lanesThatMatch(b) << second | lanesThatMatch(c) << third;
  for (; matched != 0 && needed > 0; matched &= matched - 1) {
    const std::uint32_t distance =
        matcher.distance(samples + 4 * static_cast<size_t>(__builtin_ctz(matched)), pixel);
    if (distance < nearest) nearest = distance;
    --needed;
  }
  minDist = nearest;
  return needed <= 0;
}

// The compared bytes of a pixel, in one word. Reads at most `channels` bytes.
[[gnu::always_inline]] inline std::uint32_t valueOf(const std::uint8_t* bytes, std::int32_t channels) {
  std::uint32_t value = bytes[0];
  if (channels != 1) {
    value |= static_cast<std::uint32_t>(bytes[1]) << 8 | static_cast<std::uint32_t>(bytes[2]) << 16;
  }
  return value;
}

}  // namespace

namespace lm {

std::uint32_t matchBlock_avx2(const MatchRule& rule, const std::uint8_t* samples, const std::uint8_t* values,
                              std::uint32_t wanted, std::uint32_t* minDist) {
  assert(canMatchBlock(rule, wanted, minDist));
  // With a negative radius or needed < 1 the comparison does not end at the last needed match.
  if (rule.radius < 0 || rule.needed < 1) return matchBlock_c(rule, samples, values, wanted, minDist);
  const Matcher matcher(rule);
  std::uint32_t enough = 0;
  for (std::uint32_t left = wanted; left != 0; left &= left - 1) {
    const auto k = static_cast<size_t>(__builtin_ctz(left));
    const std::uint32_t value = valueOf(values + k * static_cast<size_t>(rule.channels), rule.channels);
    if (matchPixel(matcher, samples + k * 4 * samplesPerPixel, value, rule.needed, minDist[k])) {
      enough |= 1U << k;
    }
  }
  return enough;
}

}  // namespace lm
