// AVX2 versions of the model's kernels.
#include <immintrin.h>

#include "simd/life.h"
#include "simd/model_kernels.h"

namespace {

using std::size_t;

[[gnu::always_inline]] inline __m256i load32(const std::uint8_t* bytes) {
  return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(bytes));
}

struct Bgr {
  std::uint8_t bytes[3];
};

// Asks for the elements of a block some blocks behind the one at `begin`: more planes are read side by side
// than the processor follows by itself. Into the second cache, where more requests may be under way than on
// the way to the first. Nothing is read, so the end of a plane may be passed.
template <typename T>
[[gnu::always_inline]] inline void fetchAhead(const T* plane, size_t begin) {
  constexpr size_t ahead = 64 * lm::blockPixels;
  const auto address = reinterpret_cast<std::uintptr_t>(plane) + (begin + ahead) * sizeof(T);
  for (size_t at = 0; at < lm::blockPixels * sizeof(T); at += 64) {
    // A number, because a pointer must not leave its array. NOLINTNEXTLINE(performance-no-int-to-ptr)
    _mm_prefetch(reinterpret_cast<const char*>(address + at), _MM_HINT_T1);
  }
}

[[gnu::always_inline]] inline __m256i isZero(__m256i bytes) {
  return _mm256_cmpeq_epi8(bytes, _mm256_setzero_si256());
}

[[gnu::always_inline]] inline std::uint32_t bitsOf(__m256i bytes) {
  return static_cast<std::uint32_t>(_mm256_movemask_epi8(bytes));
}

[[gnu::always_inline]] inline void store32(std::uint8_t* bytes, __m256i value) {
  _mm256_storeu_si256(reinterpret_cast<__m256i*>(bytes), value);
}

// 32 pixels of three bytes.
struct Colours {
  __m256i a, b, c;

  [[gnu::always_inline]] explicit Colours(const std::uint8_t* pixels)
      : a(load32(pixels)), b(load32(pixels + 32)), c(load32(pixels + 64)) {}

  [[gnu::always_inline]] void store(std::uint8_t* pixels) const {
    store32(pixels, a);
    store32(pixels + 32, b);
    store32(pixels + 64, c);
  }

  // Past the caches. `pixels`: 32-byte aligned.
  [[gnu::always_inline]] void stream(std::uint8_t* pixels) const {
    auto* groups = reinterpret_cast<__m256i*>(pixels);
    _mm256_stream_si256(groups, a);
    _mm256_stream_si256(groups + 1, b);
    _mm256_stream_si256(groups + 2, c);
  }
};

// Picks one channel of 32 pixels of three bytes. Three is no divisor of 16, so the wanted bytes of 48 have
// each another place among 16: they are put together first and brought into order by one shuffle.
struct ChannelOf3 {
  __m256i fromSecond;
  __m256i fromThird;
  __m256i order;

  [[gnu::always_inline]] explicit ChannelOf3(int channel) {
    alignas(32) std::uint8_t second[32];
    alignas(32) std::uint8_t third[32];
    alignas(32) std::uint8_t sources[32];
    for (int i = 0; i < 32; ++i) {
      // Byte i of a group of 16: in which of the three it is a wanted one.
      const int byte = i % 16;
      second[i] = (byte + 16) % 3 == channel ? 0xFF : 0;
      third[i] = (byte + 32) % 3 == channel ? 0xFF : 0;
      sources[i] = static_cast<std::uint8_t>((3 * byte + channel) % 16);
    }
    fromSecond = load32(second);
    fromThird = load32(third);
    order = load32(sources);
  }

  [[gnu::always_inline]] __m256i operator()(const Colours& pixels) const {
    // Pixels 0 to 15 in the lower halves, 16 to 31 in the upper ones.
    const __m256i first = _mm256_blend_epi32(pixels.a, pixels.b, 0xF0);
    const __m256i second = _mm256_permute2x128_si256(pixels.a, pixels.c, 0x21);
    const __m256i third = _mm256_blend_epi32(pixels.b, pixels.c, 0xF0);
    const __m256i wanted =
        _mm256_blendv_epi8(_mm256_blendv_epi8(first, second, fromSecond), third, fromThird);
    return _mm256_shuffle_epi8(wanted, order);
  }
};

[[gnu::always_inline]] inline __m256i distanceOf(__m256i a, __m256i b) {
  return _mm256_or_si256(_mm256_subs_epu8(a, b), _mm256_subs_epu8(b, a));
}

// `streamed`: curFrame is written past the caches. What follows reads the frame where it came from, so that
// fetching curFrame's old bytes and keeping its new ones near would be in vain.
template <bool streamed>
[[gnu::always_inline]] inline void takeBlock(const lm::FramePlanes& planes, const ChannelOf3& channel,
                                             size_t begin) {
  fetchAhead(reinterpret_cast<const Bgr*>(planes.frame), begin);
  fetchAhead(reinterpret_cast<const Bgr*>(planes.prevFrame), begin);
  fetchAhead(reinterpret_cast<const Bgr*>(planes.bgImg), begin);
  fetchAhead(planes.rdDiff, begin);
  fetchAhead(planes.illumDiff, begin);
  const Colours frame(planes.frame + 3 * begin);
  const __m256i current = channel(frame);
  const __m256i change = distanceOf(channel(Colours(planes.prevFrame + 3 * begin)), current);
  const __m256i light = distanceOf(channel(Colours(planes.bgImg + 3 * begin)), current);
  if constexpr (streamed) {
    frame.stream(planes.curFrame + 3 * begin);
  } else {
    frame.store(planes.curFrame + 3 * begin);
  }
  frame.store(planes.prevFrame + 3 * begin);
  store32(planes.rdDiff + begin, change);
  store32(planes.illumDiff + begin, light);
}

template <bool streamed>
[[gnu::always_inline]] inline size_t takeBlocks(const lm::FramePlanes& planes, size_t begin, size_t end) {
  const ChannelOf3 channel(planes.channel);
  for (; begin + lm::blockPixels <= end; begin += lm::blockPixels)
    takeBlock<streamed>(planes, channel, begin);
  if constexpr (streamed) _mm_sfence();
  return begin;
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

// Of 32 pixels, those whose life stands to `bound` as `relation` says.
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

// Where the run of zeros that `bytes` holds at `from` may end; in steps of four blocks.
[[gnu::always_inline]] inline size_t behindZeros(const std::uint8_t* bytes, size_t from, size_t end) {
  for (; from + 4 * lm::blockPixels <= end; from += 4 * lm::blockPixels) {
    const std::uint8_t* four = bytes + from;
    const __m256i any = _mm256_or_si256(_mm256_or_si256(load32(four), load32(four + 32)),
                                        _mm256_or_si256(load32(four + 64), load32(four + 96)));
    if (_mm256_testz_si256(any, any) == 0) break;
  }
  return from;
}

// Whether the block at `begin` has busy pixels; `busy` is written only then.
[[gnu::always_inline]] inline bool isBusy(const lm::ClassifyPlanes& planes, const AtMost& unchanged,
                                          size_t begin, lm::BusyPixels& busy) {
  fetchAhead(planes.roiMask, begin);
  fetchAhead(planes.fgMask, begin);
  const std::uint32_t outside = bitsOf(isZero(load32(planes.roiMask + begin)));
  const __m256i foreground = load32(planes.fgMask + begin);
  const __m256i background = isZero(foreground);
  if (outside == ~0U) {
    busy = {~bitsOf(background), 0, 0, 0};
    return busy.outside != 0;
  }
  fetchAhead(planes.prevFgMask, begin);
  if (planes.accountLife) {
    fetchAhead(planes.absorbMask, begin);
    fetchAhead(planes.fgLife, begin);
  }
  const std::uint32_t still = bitsOf(
      _mm256_and_si256(unchanged(load32(planes.rdDiff + begin)), isZero(load32(planes.prevFgMask + begin))));
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
  busy = {left, stirred & still, absorbed, stirred & ~still & ~absorbed};
  return true;
}

// 0xFF in the bytes whose bits are set.
[[gnu::always_inline]] inline __m256i bytesOf(std::uint32_t bits) {
  const __m256i spread =
      _mm256_shuffle_epi8(_mm256_set1_epi32(static_cast<int>(bits)),
                          _mm256_setr_epi8(0, 0, 0, 0, 0, 0, 0, 0, 1, 1, 1, 1, 1, 1, 1, 1, 2, 2, 2, 2, 2, 2,
                                           2, 2, 3, 3, 3, 3, 3, 3, 3, 3));
  const __m256i each = _mm256_set1_epi64x(static_cast<long long>(0x8040201008040201ULL));
  return _mm256_cmpeq_epi8(_mm256_and_si256(spread, each), each);
}

// All bits of the 32-bit lanes whose bits are set, of the lowest eight.
[[gnu::always_inline]] inline __m256 lanesOf(std::uint32_t bits) {
  const __m256i each = _mm256_setr_epi32(1, 2, 4, 8, 16, 32, 64, 128);
  const __m256i mine = _mm256_and_si256(_mm256_set1_epi32(static_cast<int>(bits)), each);
  return _mm256_castsi256_ps(_mm256_cmpeq_epi32(mine, each));
}

// Lives of eight pixels after this frame: of foreground, absorbed and other background pixels.
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

  [[gnu::always_inline]] __m256 gained(__m256 life, __m256i change) const {
    __m256 result = decayed(life);
    const auto upTo = [&](__m256i band, float gain) {
      const __m256 above = _mm256_castsi256_ps(_mm256_cmpgt_epi32(change, band));
      result = _mm256_blendv_ps(_mm256_add_ps(life, _mm256_set1_ps(gain)), result, above);
    };
    upTo(band3, lm::lifeGain3);
    upTo(band2, lm::lifeGain2);
    upTo(_mm256_set1_epi32(lm::lifeBand1), lm::lifeGain1);
    return result;
  }

  [[gnu::always_inline]] __m256 operator()(__m256 life, __m256i change, __m256 isForeground,
                                           __m256 isAbsorbed) const {
    const __m256 background = _mm256_blendv_ps(decayed(life), absorbed, isAbsorbed);
    return _mm256_blendv_ps(background, gained(life, change), isForeground);
  }
};

// Accounts for the lives of the pixels `counted` of the block at `begin`.
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

struct Matcher {
  __m256i compared;  // the bytes of a sample that count
  __m256i radius;    // of each byte; nothing is too far in one that does not count

  [[gnu::always_inline]] explicit Matcher(const lm::MatchRule& rule)
      : compared(_mm256_set1_epi32(rule.channels == 1 ? 0xFF : 0xFFFFFF)),
        radius(_mm256_or_si256(_mm256_set1_epi8(static_cast<char>(rule.radius > 255 ? 255 : rule.radius)),
                               _mm256_xor_si256(compared, _mm256_set1_epi8(-1)))) {}

  // All bits of the lanes whose sample, of the eight from `samples` on, matches the pixel in every lane.
  [[gnu::always_inline]] __m256i operator()(const std::uint8_t* samples, __m256i pixel) const {
    const __m256i group = load32(samples);
    const __m256i difference =
        _mm256_or_si256(_mm256_subs_epu8(group, pixel), _mm256_subs_epu8(pixel, group));
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

// Compares all samples of a pixel at once, then walks those that match.
[[gnu::always_inline]] inline bool matchPixel(const Matcher& matcher, const std::uint8_t* samples,
                                              std::uint32_t value, std::int32_t needed,
                                              std::uint32_t& minDist) {
  // The last group starts four slots early, so that it ends with the pixel's last sample.
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

void takeFrame_avx2(const FramePlanes& planes, size_t begin, size_t end) {
  const bool usual = planes.channels == 3 && planes.frame != nullptr && planes.rdDiff != nullptr &&
                     planes.illumDiff != nullptr && planes.keep;
  if (usual) {
    const bool aligned = reinterpret_cast<std::uintptr_t>(planes.curFrame + 3 * begin) % 32 == 0;
    begin = aligned ? takeBlocks<true>(planes, begin, end) : takeBlocks<false>(planes, begin, end);
  }
  takeFrame_c(planes, begin, end);
}

size_t findBusy_avx2(const ClassifyPlanes& planes, size_t& from, size_t end, BusyBlock* found, size_t room) {
  const AtMost unchanged(planes.unchanged);
  size_t count = 0;
  for (; from + blockPixels <= end; from += blockPixels) {
    if (planes.roiMask[from] == 0) {
      // Nothing is done outside the regions but clearing what is left there.
      from = behindZeros(planes.fgMask, from, behindZeros(planes.roiMask, from, end));
      if (from + blockPixels > end) break;
    }
    if (count == room) return count;
    if (isBusy(planes, unchanged, from, found[count].pixels)) found[count++].begin = from;
  }
  return count + findBusy_c(planes, from, end, found + count, room - count);
}

void settleBlock_avx2(const ClassifyPlanes& planes, size_t begin, size_t end, const BusyPixels& busy,
                      std::uint32_t matched) {
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
  // A pixel that is absorbed now holds the same life as one that was absorbed before.
  accountLives(planes, begin, busy.compared | busy.unchanged | busy.absorbed, foreground,
               bitsOf(_mm256_cmpeq_epi8(absorbed, all)));
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

size_t findUpdateWork_avx2(const UpdatePlanes& planes, size_t& from, size_t end, UpdateBlock* found,
                           size_t room, std::int64_t& examined) {
  const AtMost unchanged(planes.unchanged);
  const AtMost sameLight(planes.sameLight);
  size_t count = 0;
  for (; from + blockPixels <= end; from += blockPixels) {
    if (count == room) return count;
    const __m256i outside = isZero(load32(planes.roiMask + from));
    if (bitsOf(outside) == ~0U) {
      from = behindZeros(planes.roiMask, from + blockPixels, end) - blockPixels;
      continue;
    }
    fetchAhead(planes.updTimer, from);
    countDown(planes.updTimer + from, outside);
    const UpdateWork work = updateWork(planes, unchanged, sameLight, from, outside, examined);
    if ((work.absorbed | work.lit | work.changed) != 0) found[count++] = {from, work};
  }
  return count + findUpdateWork_c(planes, from, end, found + count, room - count, examined);
}

}  // namespace lm
