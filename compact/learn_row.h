// Learning a row of a frame: background or foreground, how long foreground has stayed still, and which
// samples are replaced.
#pragma once

#include "compact/lanes.h"
#include "engine/life.h"
#include "engine/refresh.h"

namespace lm::compact::LIGHTMOTION_LEVEL {
namespace {

// ---- matching ---------------------------------------------------------------------------------------------

// Of the pixels compared: those with enough matching samples, and those of them whose smallest distance among
// the samples that counted is at most the radius of one channel.
struct Matches {
  uint32_t enough;
  uint32_t near;
};

// Slots of a block that are compared before those of the next block are prefetched: a block that needs more
// seldom comes alone.
inline constexpr size_t fewSlots = 4;

// All pixels of a block against one slot after the other, until those that are `wanted` have enough.
template <size_t planes>
[[gnu::always_inline]] inline Matches match(const LearnRule& rule, const uint8_t* samples,
                                            const __m256i* values, uint32_t wanted) {
  const __m256i radius = every(rule.radius);
  const __m256i needed = every(rule.needed);
  const __m256i others = bytesOf(~wanted);
  const __m256i all = every(0xFF);
  __m256i count = _mm256_setzero_si256();
  __m256i enough = _mm256_setzero_si256();
  __m256i near = _mm256_setzero_si256();
  for (size_t slot = 0; slot < samplesPerPixel; ++slot, samples += planes * blockPixels) {
    __m256i distance = differenceOf(load32(samples), values[0]);
    __m256i largest = distance;
    for (size_t channel = 1; channel < planes; ++channel) {
      const __m256i difference = differenceOf(load32(samples + channel * blockPixels), values[channel]);
      largest = _mm256_max_epu8(largest, difference);
      distance = _mm256_adds_epu8(distance, difference);
    }
    const __m256i matches = isAtMost(largest, radius);
    const __m256i close = isAtMost(distance, radius);
    near = _mm256_or_si256(near, _mm256_andnot_si256(enough, close));
    count = _mm256_sub_epi8(count, matches);
    enough = isAtLeast(count, needed);
    if (_mm256_testc_si256(_mm256_or_si256(enough, others), all) != 0) break;
    if (slot >= fewSlots) {
      const uint8_t* ofNextBlock = samples + samplesPerPixel * planes * blockPixels;
      prefetch(ofNextBlock);
      if constexpr (planes > 1) prefetch(ofNextBlock + 64);
    }
  }
  return {bitsOf(enough), bitsOf(near)};
}

// ---- life -------------------------------------------------------------------------------------------------

// The pixels of 32 whose life is in `relation` (_CMP_...) to `bound`.
template <int relation>
[[gnu::always_inline]] inline uint32_t livesThat(const float* life, float bound) {
  const __m256 bounds = _mm256_set1_ps(bound);
  uint32_t bits = 0;
  for (size_t k = 0; k < 4; ++k) {
    const __m256 holds = _mm256_cmp_ps(_mm256_loadu_ps(life + 8 * k), bounds, relation);
    bits |= static_cast<uint32_t>(_mm256_movemask_ps(holds)) << (8 * k);
  }
  return bits;
}

// All bits of each 32-bit lane whose bit, of the lowest eight, is set.
[[gnu::always_inline]] inline __m256 lanesOf(uint32_t bits) {
  const __m256i each = _mm256_setr_epi32(1, 2, 4, 8, 16, 32, 64, 128);
  const __m256i mine = _mm256_and_si256(_mm256_set1_epi32(static_cast<int>(bits)), each);
  return _mm256_castsi256_ps(_mm256_cmpeq_epi32(mine, each));
}

[[gnu::always_inline]] inline __m256 decayed(__m256 life) {
  const __m256 alive = _mm256_cmp_ps(life, _mm256_set1_ps(leastLife), _CMP_GE_OQ);
  return _mm256_blendv_ps(life, _mm256_sub_ps(life, _mm256_set1_ps(lifeLoss)), alive);
}

// `otherwise` where the change exceeds `band`, else the life and its gain.
[[gnu::always_inline]] inline __m256 upTo(__m256i band, __m256i change, __m256 life, float gain,
                                          __m256 otherwise) {
  const __m256 above = _mm256_castsi256_ps(_mm256_cmpgt_epi32(change, band));
  return _mm256_blendv_ps(_mm256_add_ps(life, _mm256_set1_ps(gain)), otherwise, above);
}

// gainLife (engine/life.h) of eight pixels.
[[gnu::always_inline]] inline __m256 gained(const LifeRule& rule, __m256 life, __m256i change) {
  const __m256 most = upTo(_mm256_set1_epi32(rule.band3), change, life, lifeGain3, decayed(life));
  const __m256 more = upTo(_mm256_set1_epi32(rule.band2), change, life, lifeGain2, most);
  return upTo(_mm256_set1_epi32(lifeBand1), change, life, lifeGain1, more);
}

// Updates the lives of the pixels `counted`; the pixels of 32 whose life is 1 or more afterwards.
[[gnu::always_inline]] inline uint32_t accountLives(const LifeRule& rule, float* lives,
                                                    const uint8_t* differences, uint32_t counted,
                                                    uint32_t foreground, uint32_t absorbed) {
  for (size_t k = 0; k < 4; ++k) {
    if ((counted >> (8 * k) & 0xFF) == 0) continue;
    float* const eight = lives + 8 * k;
    const __m256 life = _mm256_loadu_ps(eight);
    const __m256i change =
        _mm256_cvtepu8_epi32(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(differences + 8 * k)));
    const __m256 still =
        _mm256_blendv_ps(decayed(life), _mm256_set1_ps(rule.absorbed), lanesOf(absorbed >> (8 * k)));
    // What is not counted is neither foreground nor alive: it stays as it is.
    _mm256_storeu_ps(eight,
                     _mm256_blendv_ps(still, gained(rule, life, change), lanesOf(foreground >> (8 * k))));
  }
  return livesThat<_CMP_GE_OQ>(lives, leastLife);
}

// ---- update -----------------------------------------------------------------------------------------------

// A byte holds the position in the refresh cycle in its low half, and the frames to rest in its high half.
inline constexpr uint8_t oneFrame = 1 << 4;  // of rest
inline constexpr uint8_t fullRest = refreshRest << 4;
static_assert(refreshCycle == oneFrame && refreshRest < 16);

// Counts down the rest of 32 pixels; whether any of them still rests.
[[gnu::always_inline]] inline bool countDown(uint8_t* turns) {
  const __m256i turn = load32(turns);
  const __m256i resting = isAtLeast(turn, every(oneFrame));
  const __m256i next = _mm256_sub_epi8(turn, _mm256_and_si256(resting, every(oneFrame)));
  store32(turns, next);
  return bitsOf(isAtLeast(next, every(oneFrame))) != 0;
}

// One block of a row, and what the steps of its update share.
template <int channels>
class Block {
 public:
  static constexpr size_t planes = channels == 1 ? 1 : maxChannels;

  [[gnu::always_inline]] Block(const LearnRule& rule, const LearnRow& input, const RowPlanes& row,
                               size_t block)
      : rule_(rule),
        input_(input),
        row_(row),
        block_(block),
        at_(block * blockPixels),
        samples_(row.samples + block * bytesOfSamples(planes)) {}

  [[gnu::always_inline]] uint8_t* samples() const { return samples_; }

  // The pixels `asking` whose next neighbour in turn is lit too.
  [[gnu::always_inline]] uint32_t followers(uint32_t asking) const {
    const bool inside =
        !input_.border.whole && at_ >= 2 && at_ + blockPixels + 2 <= static_cast<size_t>(input_.width);
    uint32_t followed = 0;
    for (uint32_t left = asking; left != 0; left &= left - 1) {
      const auto k = firstOf(left);
      uint8_t& cursor = row_.neighbour[at_ + k];
      const uint8_t entry = cursor;
      cursor = rule_.nextNeighbour[entry];
      const bool lit = inside ? isLit(static_cast<std::int32_t>(at_ + k) + offsetX(entry), offsetY(entry))
                              : isLitAtBorder(static_cast<std::int32_t>(at_ + k), entry);
      followed |= static_cast<uint32_t>(lit) << k;
    }
    return followed;
  }

  // The pixels of `candidates` that are refreshed in this frame; they rest from now on.
  [[gnu::always_inline]] uint32_t refreshed(uint32_t candidates) const {
    uint32_t due = 0;
    for (uint32_t left = candidates; left != 0; left &= left - 1) {
      const auto k = firstOf(left);
      uint8_t& turn = row_.turn[at_ + k];
      if (turn >= oneFrame) continue;
      const bool now = turn == refreshTurn;
      turn = static_cast<uint8_t>((turn + 1) % refreshCycle | (now ? fullRest : 0));
      due |= static_cast<uint32_t>(now) << k;
    }
    if (due != 0) row_.resting[block_] = 1;
    return due;
  }

  // Writes the pixels into their samples and into the background.
  [[gnu::always_inline]] void write(uint32_t written) const {
    for (uint32_t left = written; left != 0; left &= left - 1) {
      const auto k = firstOf(left);
      const uint8_t* value = input_.pixels + (at_ + k) * channels;
      uint8_t& cursor = row_.slot[at_ + k];
      uint8_t* sample = samples_ + cursor * (planes * blockPixels) + k;
      cursor = rule_.nextSlot[cursor];
      for (size_t channel = 0; channel < planes; ++channel) {
        sample[channel * blockPixels] = value[channel];
        row_.background[channel][at_ + k] = value[channel];
      }
    }
  }

 private:
  // The neighbourhood is 5 x 5, x outer.
  static std::int32_t offsetX(uint8_t entry) { return entry / 5 - 2; }
  static std::int32_t offsetY(uint8_t entry) { return entry % 5 - 2; }

  [[gnu::always_inline]] bool isLit(std::int32_t x, std::int32_t dy) const {
    const uint32_t* bits = input_.lit[dy + 2];
    return (bits[x >> 5] >> (x & 31) & 1) != 0;
  }

  [[gnu::noinline]] bool isLitAtBorder(std::int32_t x, uint8_t entry) const {
    const std::int32_t fromRight = input_.width - 1 - x;
    if (!input_.border.whole && x >= 2 && fromRight >= 2) return isLit(x + offsetX(entry), offsetY(entry));
    const std::int32_t index = input_.border.whole || x < 2 ? x : 3 - fromRight;
    const std::int32_t place = input_.border.entries[static_cast<size_t>(index) * neighbourEntries + entry];
    return isLit(place % input_.stride, place / input_.stride - input_.y);
  }

  const LearnRule& rule_;
  const LearnRow& input_;
  const RowPlanes& row_;
  size_t block_;
  size_t at_;
  uint8_t* samples_;
};

template <int channels>
class Learner {
 public:
  static constexpr size_t planes = Block<channels>::planes;

  Learner(const LearnRule& rule, const LearnRow& input, const RowPlanes& row)
      : rule_(rule), input_(input), row_(row), read_(input.pixels, input.left) {}

  // The blocks with work of the eight from `block` on, as bits: testing one block after the other would
  // mispredict most of those that noise touches.
  [[gnu::always_inline]] uint32_t workOfEight(size_t block) const {
    const __m256i stirred =
        _mm256_or_si256(load32(input_.changes.changed + block), load32(row_.foreground + block));
    const __m256i touched = _mm256_and_si256(load32(row_.region + block),
                                             _mm256_or_si256(stirred, load32(input_.changes.lit + block)));
    const __m128i resting = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(row_.resting + block));
    const __m256i pending = _mm256_or_si256(load32(row_.alive + block), _mm256_cvtepu8_epi32(resting));
    const __m256i idle = _mm256_cmpeq_epi32(_mm256_or_si256(touched, pending), _mm256_setzero_si256());
    return static_cast<uint32_t>(_mm256_movemask_ps(_mm256_castsi256_ps(idle))) ^ 0xFF;
  }

  [[gnu::always_inline]] void learn(size_t block, LightSums& sums) {
    const uint32_t region = row_.region[block];
    const uint32_t stirred = region & (input_.changes.changed[block] | row_.foreground[block]);
    const uint32_t lit = region & input_.changes.lit[block];
    const uint32_t alive = row_.alive[block];
    if ((stirred | lit | alive | row_.resting[block]) == 0) return;

    const size_t at = block * blockPixels;
    const Block<channels> mine(rule_, input_, row_, block);
    uint32_t absorbed = 0;
    uint32_t foreground = 0;
    uint32_t near = 0;
    if (stirred != 0) {
      // A life above a limit of at least 1 is alive.
      if (rule_.absorbs && (alive != 0 || rule_.life.limit < leastLife)) {
        absorbed = stirred & livesThat<_CMP_GT_OQ>(row_.life + at, rule_.life.limit);
      }
      const uint32_t compared = stirred & ~absorbed;
      if (compared != 0) {
        const Matches matches = compare(at, mine.samples(), compared);
        foreground = compared & ~matches.enough;
        near = matches.near;
      }
      row_.foreground[block] = foreground;
    }
    if (rule_.absorbs && (foreground | absorbed | alive) != 0) {
      row_.alive[block] = region & accountLives(rule_.life, row_.life + at, input_.changes.difference + at,
                                                foreground | absorbed | alive, foreground, absorbed);
    }

    if (row_.resting[block] != 0) row_.resting[block] = countDown(row_.turn + at) ? 1 : 0;
    const uint32_t background = region & ~absorbed & ~foreground;
    const uint32_t asking = background & lit;
    sums.excluded += __builtin_popcount(region & ~background);
    sums.lit += __builtin_popcount(asking);
    const uint32_t followed = rule_.litEverywhere || asking == 0 ? asking : mine.followers(asking);
    const uint32_t candidates = stirred & background & ~followed & ~near;
    uint32_t written = absorbed | followed;
    if (candidates != 0) written |= mine.refreshed(candidates);
    if (written != 0) mine.write(written);
  }

 private:
  [[gnu::always_inline]] Matches compare(size_t at, const uint8_t* samples, uint32_t compared) {
    const Pixels<channels> pixels = read_(at);
    __m256i values[planes];
    for (size_t channel = 0; channel < planes; ++channel) {
      values[channel] = ChannelOf<channels>(static_cast<int>(channel))(pixels);
    }
    return match<planes>(rule_, samples, values, compared);
  }

  const LearnRule& rule_;
  const LearnRow& input_;
  const RowPlanes& row_;
  BlockReader<channels> read_;
};

template <int channels>
void learn(const LearnRule& rule, const LearnRow& input, BlockRange blocks, const RowPlanes& row,
           LightSums& sums) {
  Learner<channels> learner(rule, input, row);
  size_t block = blocks.begin;
  for (; block + 8 <= blocks.end; block += 8) {
    for (uint32_t work = learner.workOfEight(block); work != 0; work &= work - 1) {
      learner.learn(block + firstOf(work), sums);
    }
  }
  for (; block < blocks.end; ++block) learner.learn(block, sums);
}

}  // namespace

// Once per level. NOLINTNEXTLINE(misc-definitions-in-headers)
void learnRow(const LearnRule& rule, const LearnRow& input, BlockRange blocks, const RowPlanes& row,
              LightSums& sums) {
  switch (rule.channels) {
    case 1:
      return learn<1>(rule, input, blocks, row, sums);
    case 3:
      return learn<3>(rule, input, blocks, row, sums);
    default:
      return learn<4>(rule, input, blocks, row, sums);
  }
}

}  // namespace lm::compact::LIGHTMOTION_LEVEL
