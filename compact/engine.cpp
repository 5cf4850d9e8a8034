#include "compact/engine.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>

#include "base/integers.h"
#include "engine/engine_state.h"
#include "engine/kamble.h"
#include "engine/neighbours.h"
#include "engine/rules.h"
#include "objects/extract.h"
#include "simd/cpu_level.h"
#include "simd/versions.h"

namespace lm::compact {
namespace {

constexpr std::size_t neighbourSide = 2 * neighbourRadius + 1;
static_assert(neighbourEntries == neighbourSide * neighbourSide && RecentRows::ahead == neighbourRadius);

std::uint8_t byteLimit(std::int32_t threshold) { return static_cast<std::uint8_t>(std::min(threshold, 255)); }

TakeRule takeRule(const kAMBLE& settings, std::int32_t channel, std::int32_t next) {
  return {.channels = settings.frmChn,
          .channel = channel,
          .nextChannel = next,
          .unchanged = byteLimit(settings.thrHeuris),
          .sameLight = settings.illumChange ? byteLimit(settings.thrIllum) : std::uint8_t{255}};
}

LifeRule lifeRule(const kAMBLE& settings) {
  return {.limit = static_cast<float>(settings.lifeStaticFrm),
          .absorbed = absorbedLife(settings.lifeStaticFrm),
          .band2 = THRESH_SAME_PIXEL_x2,
          .band3 = THRESH_SAME_PIXEL_x3};
}

LearnRule learnRule(const kAMBLE& settings) {
  LearnRule rule{.channels = settings.frmChn,
                 .radius = static_cast<std::uint8_t>(settings.thrMatch),
                 .needed = static_cast<std::uint8_t>(settings.minMatchNum),
                 .absorbs = settings.ghostSuppression,
                 .litEverywhere = isGlobalChange(settings.illumRatio),
                 .life = lifeRule(settings),
                 .nextSlot = {},
                 .nextNeighbour = {}};
  for (std::uint32_t slot = 0; slot < samplesPerPixel; ++slot) {
    rule.nextSlot[slot] = static_cast<std::uint8_t>(
        nextSlot(slot, settings.lockSegStart, settings.lockSegEnd, samplesPerPixel));
  }
  for (std::uint32_t entry = 0; entry < neighbourEntries; ++entry) {
    rule.nextNeighbour[entry] = static_cast<std::uint8_t>(nextInRing(entry, neighbourEntries));
  }
  return rule;
}

BlockRange around(const BlockRange& range, std::size_t blocks) {
  return {range.begin > 0 ? range.begin - 1 : 0, std::min(range.end + 1, blocks)};
}

BlockRange united(const BlockRange& a, const BlockRange& b) {
  if (a.empty()) return b;
  if (b.empty()) return a;
  return {std::min(a.begin, b.begin), std::max(a.end, b.end)};
}

}  // namespace

Engine::Engine() : Engine(simd::GetCpuInstructionSet()) {}

Engine::Engine(int level) : Engine(kernelsFor(level)) {}

Engine::Engine(const Kernels& kernels) : kernels_(kernels) {}

bool Engine::suits(const kAMBLE& settings, const Shape& shape) {
  const bool known = shape.channels == 1 || shape.channels == 3 || shape.channels == 4;
  if (!known || shape.width < 1 || shape.height < 1) return false;
  // Of a plane, whose rows are whole blocks.
  const std::int64_t pixels = static_cast<std::int64_t>(shape.blocks() * blockPixels) * shape.height;
  return pixels <= std::numeric_limits<std::int32_t>::max() / shape.channels &&
         settings.szImgX == shape.width && settings.szImgY == shape.height && settings.roiMask != nullptr &&
         settings.frmCount == 0 && settings.numNbr == std::int32_t{neighbourEntries} &&
         settings.thrMatch >= 0 && settings.thrMatch <= 254 && settings.minMatchNum >= 1 &&
         settings.minMatchNum <= samplesPerPixel && settings.thrHeuris >= 0 && settings.thrIllum >= 0;
}

bool Engine::learn(kAMBLE& settings, const std::uint8_t* frame, const Shape& shape) {
  settings.frmChn = shape.channels;
  if (frame == nullptr) return false;
  shape_ = shape;
  settings.estFrameRate();
  settings.updateLock();
  if (!started_) {
    if (!start(settings, frame)) return false;
  } else {
    learnRows(settings, frame);
    classified_ = true;
  }
  settings.frmCount = wrapAdd(settings.frmCount, 1);
  return true;
}

bool Engine::start(kAMBLE& settings, const std::uint8_t* frame) {
  takeSize(settings, shape_.width, shape_.height);
  deriveLimits(settings);
  if (!memory_.make(shape_)) return false;
  if (!border_.draw(shape_, static_cast<std::int32_t>(memory_.stride()))) return false;
  recent_.make(shape_.blocks());
  erosion_.make(shape_.width, shape_.height);
  readRegion(settings);
  seed(frame);
  releaseRegionMasks(settings);
  started_ = true;
  return true;
}

void Engine::readRegion(const kAMBLE& settings) {
  const auto height = static_cast<std::size_t>(shape_.height);
  learned_.assign(height, {});
  taken_.assign(height, {});
  regionPixels_ = 0;
  const std::uint8_t* mask = settings.roiMask;
  for (std::int32_t y = 0; y < shape_.height; ++y) {
    BlockRange range;
    std::uint32_t* words = memory_.region(y);
    for (std::int32_t x = 0; x < shape_.width; ++x) {
      if (*mask++ == 0) continue;
      const std::size_t block = static_cast<std::size_t>(x) / blockPixels;
      words[block] |= 1U << (static_cast<std::size_t>(x) % blockPixels);
      range = united(range, {block, block + 1});
      ++regionPixels_;
    }
    learned_[static_cast<std::size_t>(y)] = range;
  }
  for (std::size_t y = 0; y < height; ++y) {
    if (learned_[y].empty()) continue;
    const BlockRange range = around(learned_[y], shape_.blocks());
    const std::size_t first = y < 2 ? 0 : y - 2;
    for (std::size_t row = first; row <= std::min(y + 2, height - 1); ++row) {
      taken_[row] = united(taken_[row], range);
    }
  }
  const std::size_t tail = std::min<std::size_t>(32, static_cast<std::size_t>(shape_.width) * height);
  regionStart_.assign(tail, false);
  for (std::size_t i = 0; i < tail; ++i) regionStart_[i] = settings.roiMask[i] == 1;
}

void Engine::seed(const std::uint8_t* frame) {
  constexpr std::size_t margin = blockPixels;
  const std::size_t planes = shape_.planes();
  const std::size_t stride = memory_.stride() + 2 * margin;
  std::vector<std::uint8_t> ring(5 * planes * stride, 0);
  const auto splitAt = [&](std::int32_t y, std::size_t channel) {
    return ring.data() + (static_cast<std::size_t>(y + 5) % 5 * planes + channel) * stride + margin;
  };
  std::int32_t ready = 0;
  for (std::int32_t y = 0; y < shape_.height; ++y) {
    for (; ready <= std::min(y + 2, shape_.height - 1); ++ready) {
      std::uint8_t* split[maxChannels] = {};
      for (std::size_t channel = 0; channel < planes; ++channel) split[channel] = splitAt(ready, channel);
      kernels_.splitRow(shape_.channels, frame + static_cast<std::size_t>(ready) * shape_.rowBytes(),
                        static_cast<std::size_t>(shape_.width), split);
    }
    const RowPlanes row = memory_.row(y);
    const BlockRange taken = taken_[static_cast<std::size_t>(y)];
    if (taken.empty()) continue;
    const std::size_t begin = taken.begin * blockPixels;
    const std::size_t count = (taken.end - taken.begin) * blockPixels;
    // The first comparison is on channel 0.
    std::memcpy(row.previous + begin, splitAt(y, 0) + begin, count);
    for (std::size_t channel = 0; channel < planes; ++channel) {
      std::memcpy(row.background[channel] + begin, splitAt(y, channel) + begin, count);
    }
    const BlockRange learned = learned_[static_cast<std::size_t>(y)];
    if (learned.empty()) continue;
    const std::uint8_t* rows[5][maxChannels] = {};
    for (std::int32_t dy = -2; dy <= 2; ++dy) {
      for (std::size_t channel = 0; channel < planes; ++channel)
        rows[dy + 2][channel] = splitAt(y + dy, channel);
    }
    kernels_.seedRow(planes, rows, learned, row.samples);
    // As if the neighbours had been asked in turn, one for each slot but the first.
    const std::size_t first = learned.begin * blockPixels;
    std::memset(row.neighbour + first, samplesPerPixel - 1, (learned.end - learned.begin) * blockPixels);
    // On the first classification no pixel counts as background before.
    for (std::size_t block = learned.begin; block < learned.end; ++block)
      row.foreground[block] = row.region[block];
    border_.forEach(y, [&](std::int32_t x, const std::int32_t* entries) {
      const std::size_t block = static_cast<std::size_t>(x) / blockPixels;
      if (block < learned.begin || block >= learned.end) return;
      std::uint8_t* samples =
          row.samples + block * sampleBytes(planes) + static_cast<std::size_t>(x) % blockPixels;
      for (std::size_t slot = 1; slot < samplesPerPixel; ++slot) {
        const auto place = static_cast<std::size_t>(entries[slot - 1]);
        const std::size_t pixel =
            place / memory_.stride() * static_cast<std::size_t>(shape_.width) + place % memory_.stride();
        const std::uint8_t* value = frame + pixel * static_cast<std::size_t>(shape_.channels);
        for (std::size_t channel = 0; channel < planes; ++channel) {
          samples[(slot * planes + channel) * blockPixels] = value[channel];
        }
      }
    });
  }
}

void Engine::learnRows(kAMBLE& settings, const std::uint8_t* frame) {
  const std::int32_t channel = comparedChannel(settings.diffChn);
  settings.diffChn = nextChannel(settings.diffChn, settings.frmChn);
  const TakeRule take = takeRule(settings, channel, comparedChannel(settings.diffChn));
  const LearnRule rule = learnRule(settings);
  const auto width = static_cast<std::size_t>(shape_.width);
  const std::size_t pixels = width * static_cast<std::size_t>(shape_.height);
  const Kernels& run = kernels_;
  LightSums sums;
  std::int32_t next = 0;
  for (std::int32_t y = 0; y < shape_.height; ++y) {
    const BlockRange learned = learned_[static_cast<std::size_t>(y)];
    if (learned.empty()) continue;
    for (; next <= std::min(y + RecentRows::ahead, shape_.height - 1); ++next) {
      const BlockRange taken = taken_[static_cast<std::size_t>(next)];
      if (taken.empty()) continue;
      const std::size_t before = static_cast<std::size_t>(next) * width;
      run.takeRow(take, frame + before * static_cast<std::size_t>(shape_.channels), pixels - before, taken,
                  memory_.row(next), recent_.of(next));
    }
    const std::size_t before = static_cast<std::size_t>(y) * width;
    const LearnRow input{.pixels = frame + before * static_cast<std::size_t>(shape_.channels),
                         .left = pixels - before,
                         .width = shape_.width,
                         .stride = static_cast<std::int32_t>(memory_.stride()),
                         .y = y,
                         .changes = recent_.of(y),
                         .lit = {recent_.lit(y - 2), recent_.lit(y - 1), recent_.lit(y), recent_.lit(y + 1),
                                 recent_.lit(y + 2)},
                         .border = border_.row(y)};
    run.learnRow(rule, input, learned, memory_.row(y), sums);
  }
  settings.illumRatio = LightCount{regionPixels_ - sums.excluded, sums.lit}.ratio();
}

std::vector<boxRect> Engine::boxes(kAMBLE& settings) {
  if (!started_) return {};
  for (std::int32_t y = 0; y < shape_.height; ++y) {
    // The words of a first frame mark what has not been classified.
    if (classified_) erosion_.read(y, memory_.foreground(y), shape_.blocks());
  }
  erosion_.peel(3);
  // Kept: the last pixels of the mask are pruned by the first pixels of the region.
  const std::int32_t width = shape_.width;
  const std::int32_t pixels = width * shape_.height;
  const std::int32_t tail = pixels % pruneBlock(simd::GetCpuInstructionSet());
  for (std::int32_t i = 0; i < tail; ++i) {
    const std::int32_t pixel = pixels - tail + i;
    if (!regionStart_[static_cast<std::size_t>(i)]) erosion_.clear(pixel % width, pixel / width);
  }
  runs_.start(width);
  for (std::int32_t y = 0; y < shape_.height; ++y) {
    if (erosion_.holds(y)) runs_.addRow(erosion_.row(y), erosion_.words(), y);
  }
  SmallComponents small;
  std::vector<boxRect> found;
  for (const SpannedComponent& spanned : runs_.number()) {
    if (!isLarge(settings, spanned.component, small)) continue;
    found.push_back(boxBetween(spanned.left - 1, spanned.top - 1, spanned.right + 1, spanned.bottom + 1,
                               width, shape_.height));
  }
  joinBoxes(settings, found);
  finishBoxes(settings, found, small);
  return found;
}

bool Engine::isForeground(std::int32_t x, std::int32_t y) const {
  const auto column = static_cast<std::size_t>(x);
  return (memory_.foreground(y)[column / blockPixels] >> (column % blockPixels) & 1) != 0;
}

}  // namespace lm::compact
