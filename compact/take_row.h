// Taking a row of a frame: the differences that decide where there is work.
#pragma once

#include "compact/lanes.h"

namespace lm::compact::LIGHTMOTION_LEVEL {
namespace {

template <int channels>
void take(const TakeRule& rule, const uint8_t* pixels, size_t left, BlockRange blocks, const RowPlanes& row,
          const RowChanges& changes) {
  const ChannelOf<channels> now(rule.channel);
  const ChannelOf<channels> next(rule.nextChannel);
  const __m256i unchanged = every(rule.unchanged);
  const __m256i sameLight = every(rule.sameLight);
  const uint8_t* background = row.background[rule.channel];
  BlockReader<channels> read(pixels, left);
  const size_t blockBytes = bytesOfSamples(channels == 1 ? 1 : maxChannels);
  for (size_t block = blocks.begin; block < blocks.end; ++block) {
    const size_t at = block * blockPixels;
    const Pixels<channels> frame = read(at);
    const __m256i value = now(frame);
    const __m256i difference = differenceOf(load32(row.previous + at), value);
    const __m256i light = differenceOf(load32(background + at), value);
    store32(row.previous + at, next(frame));
    store32(changes.difference + at, difference);
    const uint32_t changed = ~bitsOf(isAtMost(difference, unchanged));
    changes.changed[block] = changed;
    const uint32_t lit = ~bitsOf(isAtMost(light, sameLight));
    changes.lit[block] = lit;
    const uint32_t region = row.region[block];
    if ((lit & region) != 0) prefetch(row.neighbour + at);
    if (((changed | row.foreground[block]) & region) != 0) {
      // Most pixels need no more than the first few slots.
      const uint8_t* samples = row.samples + block * blockBytes;
      for (size_t line = 0; line < 4; ++line) prefetch(samples + 64 * line);
      if (row.foreground[block] == 0) continue;
      prefetch(row.life + at);
      prefetch(row.life + at + blockPixels / 2);
      prefetch(row.slot + at);
      prefetch(row.turn + at);
    }
  }
}

}  // namespace

// Once per level. NOLINTNEXTLINE(misc-definitions-in-headers)
void takeRow(const TakeRule& rule, const uint8_t* pixels, size_t left, BlockRange blocks,
             const RowPlanes& row, const RowChanges& changes) {
  switch (rule.channels) {
    case 1:
      return take<1>(rule, pixels, left, blocks, row, changes);
    case 3:
      return take<3>(rule, pixels, left, blocks, row, changes);
    default:
      return take<4>(rule, pixels, left, blocks, row, changes);
  }
}

}  // namespace lm::compact::LIGHTMOTION_LEVEL
