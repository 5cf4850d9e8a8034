// Seeding samples from a frame: of all watched pixels with the first one, later of those that are watched
// from then on or learned anew.
#include <algorithm>
#include <bit>
#include <cstring>

#include "compact/engine.h"

namespace lm::compact {
namespace {

constexpr std::uint32_t wholeBlock = ~std::uint32_t{0};
constexpr std::size_t splitMargin = blockPixels;  // of a split row, at both ends

bool contains(const BlockRange& range, std::size_t block) {
  return block >= range.begin && block < range.end;
}

// Copies the bytes of a block whose bits are set.
void copyWhere(std::uint32_t bits, const std::uint8_t* from, std::uint8_t* to) {
  for (; bits != 0; bits &= bits - 1) to[std::countr_zero(bits)] = from[std::countr_zero(bits)];
}

}  // namespace

void Engine::makeSplitRows() {
  splitRows_.assign(5 * shape_.planes() * (memory_.stride() + 2 * splitMargin), 0);
}

// Calls seedRow(y, rows) for every row; rows[dy + 2][channel] are the channels of the rows around it. After
// makeSplitRows(), whose memory it releases.
template <typename SeedRow>
void Engine::forEachSplitRow(const std::uint8_t* frame, const SeedRow& seedRow) {
  constexpr std::size_t margin = splitMargin;
  const std::size_t planes = shape_.planes();
  const std::size_t length = memory_.stride() + 2 * margin;
  std::vector<std::uint8_t> ring = std::move(splitRows_);
  const auto splitAt = [&](std::int32_t y, std::size_t channel) {
    return ring.data() + (static_cast<std::size_t>(y + 5) % 5 * planes + channel) * length + margin;
  };
  std::int32_t ready = 0;
  for (std::int32_t y = 0; y < shape_.height; ++y) {
    for (; ready <= std::min(y + 2, shape_.height - 1); ++ready) {
      std::uint8_t* split[maxChannels] = {};
      for (std::size_t channel = 0; channel < planes; ++channel) split[channel] = splitAt(ready, channel);
      kernels_.splitRow(shape_.channels, rowOf(frame, ready), static_cast<std::size_t>(shape_.width), split);
    }
    const std::uint8_t* rows[5][maxChannels] = {};
    for (std::int32_t dy = -2; dy <= 2; ++dy) {
      for (std::size_t channel = 0; channel < planes; ++channel)
        rows[dy + 2][channel] = splitAt(y + dy, channel);
    }
    seedRow(y, rows);
  }
}

// The samples of those border pixels of a row whose bits are set in `wanted`.
void Engine::seedBorder(const std::uint8_t* frame, std::int32_t y, const std::uint32_t* wanted) const {
  const std::size_t planes = shape_.planes();
  border_.forEach(y, [&](std::int32_t x, const std::int32_t* entries) {
    const std::size_t block = static_cast<std::size_t>(x) / blockPixels;
    if ((wanted[block] >> (static_cast<std::size_t>(x) % blockPixels) & 1) == 0) return;
    std::uint8_t* samples =
        memory_.row(y).samples + block * sampleBytes(planes) + static_cast<std::size_t>(x) % blockPixels;
    for (std::size_t slot = 1; slot < samplesPerPixel; ++slot) {
      const auto place = static_cast<std::size_t>(entries[slot - 1]);
      const std::uint8_t* value = rowOf(frame, static_cast<std::int32_t>(place / memory_.stride())) +
                                  place % memory_.stride() * static_cast<std::size_t>(shape_.channels);
      for (std::size_t channel = 0; channel < planes; ++channel) {
        samples[(slot * planes + channel) * blockPixels] = value[channel];
      }
    }
  });
}

void Engine::seed(const std::uint8_t* frame) {
  makeSplitRows();
  const std::size_t planes = shape_.planes();
  forEachSplitRow(frame, [&](std::int32_t y, const std::uint8_t* const(*rows)[maxChannels]) {
    const RowPlanes row = memory_.row(y);
    const BlockRange taken = watched_.taken[static_cast<std::size_t>(y)];
    if (taken.empty()) return;
    const std::size_t begin = taken.begin * blockPixels;
    const std::size_t count = (taken.end - taken.begin) * blockPixels;
    // The first comparison is on channel 0.
    std::memcpy(row.previous + begin, rows[2][ordered(0)] + begin, count);
    for (std::size_t channel = 0; channel < planes; ++channel) {
      std::memcpy(row.background[channel] + begin, rows[2][channel] + begin, count);
    }
    const BlockRange learned = watched_.learned[static_cast<std::size_t>(y)];
    if (learned.empty()) return;
    kernels_.seedRow(planes, rows, learned, row.samples);
    // As if the neighbours had been asked in turn, one for each slot but the first.
    const std::size_t first = learned.begin * blockPixels;
    std::memset(row.neighbour + first, samplesPerPixel - 1, (learned.end - learned.begin) * blockPixels);
    // On the first classification no pixel counts as background before.
    for (std::size_t block = learned.begin; block < learned.end; ++block)
      row.foreground[block] = row.region[block];
    seedBorder(frame, y, row.region);
  });
}

// The pixels of a block whose bits are set, as seed() leaves them.
void Engine::seedBlock(const RowPlanes& row, const std::uint8_t* const (*rows)[maxChannels],
                       std::size_t block, std::uint32_t added) const {
  const std::size_t planes = shape_.planes();
  std::uint8_t* samples = row.samples + block * sampleBytes(planes);
  std::uint8_t before[sampleBytes(maxChannels)];
  std::memcpy(before, samples, sampleBytes(planes));
  kernels_.seedRow(planes, rows, {block, block + 1}, row.samples);
  if (added != wholeBlock) {
    for (std::size_t at = 0; at < sampleBytes(planes); at += blockPixels)
      copyWhere(~added, before + at, samples + at);
  }
  for (std::uint32_t bits = added; bits != 0; bits &= bits - 1) {
    const std::size_t pixel = block * blockPixels + static_cast<std::size_t>(std::countr_zero(bits));
    row.slot[pixel] = 0;
    row.neighbour[pixel] = samplesPerPixel - 1;
    row.turn[pixel] = 0;
    row.life[pixel] = 0;
  }
}

void Engine::watch(Watched watched) {
  makeSplitRows();
  next_ = std::move(watched);
}

void Engine::relearn(const Area& area, const std::uint8_t* mask, std::size_t stride) {
  makeSplitRows();
  const std::size_t blocks = shape_.blocks();
  if (forgotten_.empty()) forgotten_.resize(blocks * static_cast<std::size_t>(shape_.height));
  const auto left = static_cast<std::size_t>(area.x);
  for (std::int32_t y = 0; y < area.height; ++y) {
    std::uint32_t* bits = forgotten_.data() + static_cast<std::size_t>(area.y + y) * blocks;
    const std::uint8_t* chosen = mask == nullptr ? nullptr : mask + static_cast<std::size_t>(y) * stride;
    for (std::size_t x = 0; x < static_cast<std::size_t>(area.width); ++x) {
      if (chosen != nullptr && chosen[x] == 0) continue;
      bits[(left + x) / blockPixels] |= 1U << ((left + x) % blockPixels);
    }
  }
}

// In the frame that seeds them, added pixels are not learned: only what was watched before, still is and was
// not forgotten.
void Engine::beginWatching(const std::uint8_t* frame) {
  const std::size_t planes = shape_.planes();
  const std::size_t blocks = shape_.blocks();
  std::vector<std::uint32_t>& added = next_ ? next_->bits : forgotten_;
  const std::vector<BlockRange>& takenFrom = next_ ? next_->taken : watched_.taken;
  std::int64_t kept = 0;
  forEachSplitRow(frame, [&](std::int32_t y, const std::uint8_t* const(*rows)[maxChannels]) {
    const RowPlanes row = memory_.row(y);
    std::uint32_t* region = memory_.region(y);
    const std::size_t first = static_cast<std::size_t>(y) * blocks;
    const BlockRange taken = takenFrom[static_cast<std::size_t>(y)];
    const BlockRange takenBefore = watched_.taken[static_cast<std::size_t>(y)];
    for (std::size_t block = 0; block < blocks; ++block) {
      const std::uint32_t wanted = next_ ? next_->bits[first + block] : region[block];
      const std::uint32_t known = region[block] & ~(forgotten_.empty() ? 0 : forgotten_[first + block]);
      const std::uint32_t seeded = added[first + block] = wanted & ~known;
      region[block] = wanted & known;
      row.foreground[block] &= region[block];
      kept += std::popcount(region[block]);
      if (!contains(taken, block)) continue;
      const std::uint32_t unknown = contains(takenBefore, block) ? seeded : wholeBlock;
      const std::size_t at = block * blockPixels;
      for (std::size_t channel = 0; channel < planes; ++channel) {
        copyWhere(unknown, rows[2][channel] + at, row.background[channel] + at);
      }
      if (seeded != 0) seedBlock(row, rows, block, seeded);
    }
    seedBorder(frame, y, added.data() + first);
  });
  added_ = std::move(added);
  if (next_) watched_ = std::move(*next_);
  watched_.pixels = kept;
  next_.reset();
  forgotten_ = {};
}

void Engine::finishWatching() {
  for (std::int32_t y = 0; y < shape_.height; ++y) {
    const RowPlanes row = memory_.row(y);
    std::uint32_t* region = memory_.region(y);
    for (std::size_t block = 0; block < shape_.blocks(); ++block) {
      const std::uint32_t added = added_[static_cast<std::size_t>(y) * shape_.blocks() + block];
      region[block] |= added;
      row.foreground[block] |= added;
      watched_.pixels += std::popcount(added);
    }
  }
  added_ = {};
}

}  // namespace lm::compact
