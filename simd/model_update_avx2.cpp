// AVX2 version of finding the pixels to update.
#include <cassert>

#include "simd/avx2_lanes.h"
#include "simd/contracts.h"

namespace {

using std::size_t;

[[gnu::always_inline]] inline lm::UpdateWork updateWork(const lm::UpdatePlanes& planes,
                                                        const ByteThreshold& unchanged,
                                                        const ByteThreshold& sameLight, size_t begin,
                                                        __m256i outside, std::int64_t& examined) {
  const std::uint32_t inside = ~bitsOf(outside);
  std::uint32_t absorbed = 0;
  if (planes.absorbing) {
    absorbed = inside & bitsOf(_mm256_cmpeq_epi8(load32(planes.absorbMask + begin), _mm256_set1_epi8(-1)));
  }
  const std::uint32_t background = inside & ~absorbed & bitsOf(isZero(load32(planes.fgMask + begin)));
  std::uint32_t lit = 0;
  if (planes.watchLight) {
    examined += __builtin_popcount(background);
    lit = background & ~bitsOf(isAtMost(load32(planes.illumDiff + begin), sameLight));
  }
  const std::uint32_t still = bitsOf(_mm256_and_si256(isAtMost(load32(planes.rdDiff + begin), unchanged),
                                                      isZero(load32(planes.prevFgMask + begin))));
  return {.absorbed = absorbed, .lit = lit, .changed = background & ~still};
}

// Decrements the timers of the pixels that are not `outside`.
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

size_t findUpdateWork_avx2(const UpdatePlanes& planes, size_t& from, size_t end, UpdateBlock* found,
                           size_t room, std::int64_t& examined) {
  assert(canFindUpdateWork(planes, found, room));
  const ByteThreshold unchanged = thresholdOf(planes.unchanged);
  const ByteThreshold sameLight = thresholdOf(planes.sameLight);
  size_t count = 0;
  for (; from + blockPixels <= end; from += blockPixels) {
    if (count == room) return count;
    const __m256i outside = isZero(load32(planes.roiMask + from));
    if (bitsOf(outside) == ~0U) {
      from = skipZeros(planes.roiMask, from + blockPixels, end) - blockPixels;
      continue;
    }
    prefetchAhead(planes.updTimer, from);
    countDown(planes.updTimer + from, outside);
    const UpdateWork work = updateWork(planes, unchanged, sameLight, from, outside, examined);
    if ((work.absorbed | work.lit | work.changed) != 0) found[count++] = {.begin = from, .work = work};
  }
  if (count == room) return count;
  return count + findUpdateWork_c(planes, from, end, found + count, room - count, examined);
}

}  // namespace lm
