// AVX2 versions of finding and settling busy pixels.
#include <cassert>

#include "simd/avx2_lanes.h"
#include "simd/contracts.h"
#include "simd/life.h"

namespace {

using std::size_t;

// The pixels of 32 whose life is in `relation` (_CMP_...) to `bound`.
template <int relation>
[[gnu::always_inline]] inline std::uint32_t livesThat(const float* life, float bound) {
  const __m256 bounds = _mm256_set1_ps(bound);
  std::uint32_t bits = 0;
  for (size_t k = 0; k < 4; ++k) {
    const __m256 holds = _mm256_cmp_ps(_mm256_loadu_ps(life + 8 * k), bounds, relation);
    bits |= static_cast<std::uint32_t>(_mm256_movemask_ps(holds)) << (8 * k);
  }
  return bits;
}

// Whether the block at `begin` has busy pixels; `busy` may be written even if not.
[[gnu::always_inline]] inline bool isBusy(const lm::ClassifyPlanes& planes, const ByteThreshold& unchanged,
                                          size_t begin, lm::BusyPixels& busy) {
  prefetchAhead(planes.roiMask, begin);
  prefetchAhead(planes.fgMask, begin);
  const std::uint32_t outside = bitsOf(isZero(load32(planes.roiMask + begin)));
  const __m256i foreground = load32(planes.fgMask + begin);
  const __m256i background = isZero(foreground);
  if (outside == ~0U) {
    busy = {.outside = ~bitsOf(background), .unchanged = 0, .absorbed = 0, .compared = 0};
    return busy.outside != 0;
  }
  prefetchAhead(planes.prevFgMask, begin);
  if (planes.accountLife) {
    prefetchAhead(planes.absorbMask, begin);
    prefetchAhead(planes.fgLife, begin);
  }
  const std::uint32_t still = bitsOf(_mm256_and_si256(isAtMost(load32(planes.rdDiff + begin), unchanged),
                                                      isZero(load32(planes.prevFgMask + begin))));
  std::uint32_t lifeless = ~0U;
  if (planes.accountLife) {
    const __m256i absorbed = _mm256_cmpeq_epi8(load32(planes.absorbMask + begin), _mm256_set1_epi8(-1));
    lifeless = bitsOf(_mm256_andnot_si256(absorbed, background)) &
               livesThat<_CMP_LT_OQ>(planes.fgLife + begin, lm::leastLife);
  }
  const std::uint32_t left = outside & ~bitsOf(background);
  const std::uint32_t stirred = ~outside & ~(still & lifeless);
  if ((left | stirred) == 0) return false;
  const std::uint32_t absorbed =
      planes.accountLife ? stirred & ~still & livesThat<_CMP_GT_OQ>(planes.fgLife + begin, planes.life.limit)
                         : 0;
  busy = {.outside = left,
          .unchanged = stirred & still,
          .absorbed = absorbed,
          .compared = stirred & ~still & ~absorbed};
  return true;
}

// All bits of each 32-bit lane whose bit, of the lowest eight, is set.
[[gnu::always_inline]] inline __m256 lanesOf(std::uint32_t bits) {
  const __m256i each = _mm256_setr_epi32(1, 2, 4, 8, 16, 32, 64, 128);
  const __m256i mine = _mm256_and_si256(_mm256_set1_epi32(static_cast<int>(bits)), each);
  return _mm256_castsi256_ps(_mm256_cmpeq_epi32(mine, each));
}

// The lives of eight pixels after this frame: foreground, absorbed and other background pixels.
struct LifeStep {
  __m256i band2;
  __m256i band3;
  __m256 absorbed;

  [[gnu::always_inline]] explicit LifeStep(const lm::LifeRule& rule)
      : band2(_mm256_set1_epi32(rule.band2)),
        band3(_mm256_set1_epi32(rule.band3)),
        absorbed(_mm256_set1_ps(rule.absorbed)) {}

  [[gnu::always_inline]] static __m256 decayed(__m256 life) {
    const __m256 alive = _mm256_cmp_ps(life, _mm256_set1_ps(lm::leastLife), _CMP_GE_OQ);
    return _mm256_blendv_ps(life, _mm256_sub_ps(life, _mm256_set1_ps(lm::lifeLoss)), alive);
  }

  // `otherwise` where the change exceeds `band`, else the life and its gain.
  [[gnu::always_inline]] static __m256 upTo(__m256i band, __m256i change, __m256 life, float gain,
                                            __m256 otherwise) {
    const __m256 above = _mm256_castsi256_ps(_mm256_cmpgt_epi32(change, band));
    return _mm256_blendv_ps(_mm256_add_ps(life, _mm256_set1_ps(gain)), otherwise, above);
  }

  // gainLife (simd/life.h).
  [[gnu::always_inline]] __m256 gained(__m256 life, __m256i change) const {
    const __m256 most = upTo(band3, change, life, lm::lifeGain3, decayed(life));
    const __m256 more = upTo(band2, change, life, lm::lifeGain2, most);
    return upTo(_mm256_set1_epi32(lm::lifeBand1), change, life, lm::lifeGain1, more);
  }

  [[gnu::always_inline]] __m256 operator()(__m256 life, __m256i change, __m256 isForeground,
                                           __m256 isAbsorbed) const {
    const __m256 background = _mm256_blendv_ps(decayed(life), absorbed, isAbsorbed);
    return _mm256_blendv_ps(background, gained(life, change), isForeground);
  }
};

// Updates the lives of the pixels `counted` of the block at `begin`.
[[gnu::always_inline]] inline void accountLives(const lm::ClassifyPlanes& planes, size_t begin,
                                                std::uint32_t counted, std::uint32_t foreground,
                                                std::uint32_t absorbed) {
  const LifeStep step(planes.life);
  for (size_t k = 0; k < 4; ++k) {
    float* lives = planes.fgLife + begin + 8 * k;
    const __m256 life = _mm256_loadu_ps(lives);
    const __m256i change = _mm256_cvtepu8_epi32(
        _mm_loadl_epi64(reinterpret_cast<const __m128i*>(planes.rdDiff + begin + 8 * k)));
    const __m256 next = step(life, change, lanesOf(foreground >> (8 * k)), lanesOf(absorbed >> (8 * k)));
    _mm256_storeu_ps(lives, _mm256_blendv_ps(life, next, lanesOf(counted >> (8 * k))));
  }
}

}  // namespace

namespace lm {

size_t findBusy_avx2(const ClassifyPlanes& planes, size_t& from, size_t end, BusyBlock* found, size_t room) {
  assert(canFindBusy(found, room));
  const ByteThreshold unchanged = thresholdOf(planes.unchanged);
  size_t count = 0;
  for (; from + blockPixels <= end; from += blockPixels) {
    if (planes.roiMask[from] == 0) {
      // Outside the regions only pixels that are not 0 in fgMask are busy.
      from = skipZeros(planes.fgMask, from, skipZeros(planes.roiMask, from, end));
      if (from + blockPixels > end) break;
    }
    if (count == room) return count;
    if (isBusy(planes, unchanged, from, found[count].pixels)) found[count++].begin = from;
  }
  if (count == room) return count;
  return count + findBusy_c(planes, from, end, found + count, room - count);
}

void settleBlock_avx2(const ClassifyPlanes& planes, size_t begin, size_t end, const BusyPixels& busy,
                      std::uint32_t matched) {
  assert(canSettleBlock(planes, begin, end, busy, matched));
  if (begin + blockPixels > end) return settleBlock_c(planes, begin, end, busy, matched);
  const __m256i written = bytesOf(busy.outside | busy.absorbed | busy.compared);
  const __m256i masked =
      _mm256_blendv_epi8(load32(planes.fgMask + begin), bytesOf(busy.compared & ~matched), written);
  store32(planes.fgMask + begin, masked);
  if (!planes.accountLife) return;
  __m256i absorbed = load32(planes.absorbMask + begin);
  if (busy.absorbed != 0) {
    absorbed = _mm256_or_si256(absorbed, bytesOf(busy.absorbed));
    store32(planes.absorbMask + begin, absorbed);
  }
  const __m256i all = _mm256_set1_epi8(-1);
  const std::uint32_t foreground = bitsOf(_mm256_cmpeq_epi8(masked, all));
  // A pixel absorbed in this frame gets the same life as one absorbed before.
  accountLives(planes, begin, busy.compared | busy.unchanged | busy.absorbed, foreground,
               bitsOf(_mm256_cmpeq_epi8(absorbed, all)));
}

}  // namespace lm
