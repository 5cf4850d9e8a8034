// AVX2 versions of the model's kernels.
#include <immintrin.h>

#include "simd/model_kernels.h"

namespace {

using std::size_t;

[[gnu::always_inline]] inline __m256i load32(const std::uint8_t* bytes) {
  return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(bytes));
}

[[gnu::always_inline]] inline __m256i isZero(__m256i bytes) {
  return _mm256_cmpeq_epi8(bytes, _mm256_setzero_si256());
}

[[gnu::always_inline]] inline std::uint32_t bitsOf(__m256i bytes) {
  return static_cast<std::uint32_t>(_mm256_movemask_epi8(bytes));
}

// A threshold for bytes: byte <= threshold. A negative one holds for none.
struct AtMost {
  __m256i limit;
  __m256i never;

  [[gnu::always_inline]] explicit AtMost(std::int32_t threshold)
      : limit(_mm256_set1_epi8(static_cast<char>(threshold > 255 ? 255
                                                 : threshold < 0 ? 0
                                                                 : threshold))),
        never(_mm256_set1_epi8(threshold < 0 ? -1 : 0)) {}

  [[gnu::always_inline]] __m256i operator()(__m256i bytes) const {
    return _mm256_andnot_si256(never, _mm256_cmpeq_epi8(_mm256_max_epu8(bytes, limit), limit));
  }
};

// Of 32 pixels, those whose life is below 1.
[[gnu::always_inline]] inline std::uint32_t lifeBelowOne(const float* life) {
  const __m256 one = _mm256_set1_ps(1.0F);
  std::uint32_t bits = 0;
  for (size_t k = 0; k < 4; ++k) {
    const __m256 below = _mm256_cmp_ps(_mm256_loadu_ps(life + 8 * k), one, _CMP_LT_OQ);
    bits |= static_cast<std::uint32_t>(_mm256_movemask_ps(below)) << (8 * k);
  }
  return bits;
}

[[gnu::always_inline]] inline std::uint32_t busyPixels(const lm::ClassifyPlanes& planes,
                                                       const AtMost& unchanged, size_t begin) {
  const __m256i foreground = load32(planes.fgMask + begin);
  const __m256i background = isZero(foreground);
  const std::uint32_t outside = bitsOf(isZero(load32(planes.roiMask + begin)));
  const std::uint32_t still = bitsOf(
      _mm256_and_si256(unchanged(load32(planes.rdDiff + begin)), isZero(load32(planes.prevFgMask + begin))));
  std::uint32_t lifeless = ~0U;
  if (planes.accountLife) {
    const __m256i absorbed = _mm256_cmpeq_epi8(load32(planes.absorbMask + begin), _mm256_set1_epi8(-1));
    lifeless = bitsOf(_mm256_andnot_si256(absorbed, background)) & lifeBelowOne(planes.fgLife + begin);
  }
  return ~((outside & bitsOf(background)) | (~outside & still & lifeless));
}

// Sums of the absolute differences of each group of four bytes.
[[gnu::always_inline]] inline __m256i sumOfFours(__m256i differences) {
  const __m256i pairs = _mm256_maddubs_epi16(differences, _mm256_set1_epi8(1));
  return _mm256_madd_epi16(pairs, _mm256_set1_epi16(1));
}

struct Matcher {
  __m256i compared;  // the bytes of a sample that count
  __m256i radius;

  [[gnu::always_inline]] explicit Matcher(const lm::MatchRule& rule)
      : compared(_mm256_set1_epi32(rule.channels == 1 ? 0xFF : 0xFFFFFF)),
        radius(_mm256_set1_epi8(static_cast<char>(rule.radius > 255 ? 255 : rule.radius))) {}

  // Distances of eight samples to the pixel in every lane; bits of those that match.
  [[gnu::always_inline]] std::uint32_t operator()(__m256i samples, __m256i pixel, __m256i& distances) const {
    const __m256i difference = _mm256_and_si256(
        compared, _mm256_or_si256(_mm256_subs_epu8(samples, pixel), _mm256_subs_epu8(pixel, samples)));
    distances = sumOfFours(difference);
    const __m256i within = _mm256_cmpeq_epi32(_mm256_subs_epu8(difference, radius), _mm256_setzero_si256());
    return static_cast<std::uint32_t>(_mm256_movemask_ps(_mm256_castsi256_ps(within)));
  }
};

// Walks the samples of one pixel.
[[gnu::always_inline]] inline bool matchPixel(const Matcher& matcher, const std::uint8_t* samples,
                                              std::uint32_t value, std::int32_t needed,
                                              std::uint32_t& minDist) {
  const __m256i pixel = _mm256_set1_epi32(static_cast<int>(value));
  std::uint32_t nearest = lm::nothingMatched;
  alignas(32) std::uint32_t distances[8];
  for (size_t slot = 0; slot < lm::samplesPerPixel; slot += 8) {
    // The last four samples: what lies behind them belongs to the next pixel and is not read.
    const bool whole = slot + 8 <= lm::samplesPerPixel;
    const __m256i group =
        whole ? load32(samples + 4 * slot)
              : _mm256_castsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(samples + 4 * slot)));
    __m256i sums;
    std::uint32_t matched = matcher(group, pixel, sums);
    if (!whole) matched &= 0xFU;
    if (matched == 0) continue;
    _mm256_store_si256(reinterpret_cast<__m256i*>(distances), sums);
    for (; matched != 0; matched &= matched - 1) {
      const std::uint32_t distance = distances[__builtin_ctz(matched)];
      if (distance < nearest) nearest = distance;
      if (--needed <= 0) {
        minDist = nearest;
        return true;
      }
    }
  }
  minDist = nearest;
  return false;
}

// The bytes of a pixel that count, in one word. Reads `channels` bytes.
[[gnu::always_inline]] inline std::uint32_t valueOf(const std::uint8_t* bytes, std::int32_t channels) {
  std::uint32_t value = bytes[0];
  if (channels != 1) {
    value |= static_cast<std::uint32_t>(bytes[1]) << 8 | static_cast<std::uint32_t>(bytes[2]) << 16;
  }
  return value;
}

[[gnu::always_inline]] inline lm::UpdateWork updateWork(const lm::UpdatePlanes& planes,
                                                        const AtMost& unchanged, const AtMost& sameLight,
                                                        size_t begin, __m256i outside,
                                                        std::int64_t& examined) {
  const std::uint32_t inside = ~bitsOf(outside);
  std::uint32_t absorbed = 0;
  if (planes.absorbing) {
    absorbed = inside & bitsOf(_mm256_cmpeq_epi8(load32(planes.absorbMask + begin), _mm256_set1_epi8(-1)));
  }
  const std::uint32_t background = inside & ~absorbed & bitsOf(isZero(load32(planes.fgMask + begin)));
  std::uint32_t lit = 0;
  if (planes.watchLight) {
    examined += __builtin_popcount(background);
    lit = background & ~bitsOf(sameLight(load32(planes.illumDiff + begin)));
  }
  const std::uint32_t still = bitsOf(
      _mm256_and_si256(unchanged(load32(planes.rdDiff + begin)), isZero(load32(planes.prevFgMask + begin))));
  return {absorbed, lit, background & ~still};
}

// Takes one from the timers of the pixels that are not `outside`.
[[gnu::always_inline]] inline void countDown(std::int32_t* timers, __m256i outside) {
  const __m256i insideBytes = _mm256_xor_si256(outside, _mm256_set1_epi8(-1));
  alignas(32) std::int8_t steps[32];  // -1 inside, 0 outside
  _mm256_store_si256(reinterpret_cast<__m256i*>(steps), insideBytes);
  for (size_t k = 0; k < 4; ++k) {
    auto* lane = reinterpret_cast<__m256i*>(timers + 8 * k);
    const __m256i step =
        _mm256_cvtepi8_epi32(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(steps + 8 * k)));
    _mm256_storeu_si256(lane, _mm256_add_epi32(_mm256_loadu_si256(lane), step));
  }
}

}  // namespace

namespace lm {

size_t nextBusyBlock_avx2(const ClassifyPlanes& planes, size_t from, size_t end, std::uint32_t& busy) {
  const AtMost unchanged(planes.unchanged);
  for (; from + blockPixels <= end; from += blockPixels) {
    busy = busyPixels(planes, unchanged, from);
    if (busy != 0) return from;
  }
  return nextBusyBlock_c(planes, from, end, busy);
}

std::uint32_t matchBlock_avx2(const MatchRule& rule, const std::uint8_t* samples, const std::uint8_t* values,
                              std::uint32_t wanted, std::uint32_t* minDist) {
  // A radius below zero, or no match needed, ends the walk by other rules than the first sufficient match.
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

size_t nextUpdateBlock_avx2(const UpdatePlanes& planes, size_t from, size_t end, UpdateWork& work,
                            std::int64_t& examined) {
  const AtMost unchanged(planes.unchanged);
  const AtMost sameLight(planes.sameLight);
  for (; from + blockPixels <= end; from += blockPixels) {
    const __m256i outside = isZero(load32(planes.roiMask + from));
    countDown(planes.updTimer + from, outside);
    work = updateWork(planes, unchanged, sameLight, from, outside, examined);
    if ((work.absorbed | work.lit | work.changed) != 0) return from;
  }
  return nextUpdateBlock_c(planes, from, end, work, examined);
}

}  // namespace lm
