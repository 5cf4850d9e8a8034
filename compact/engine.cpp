#include "compact/engine.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>

#include "base/integers.h"
#include "base/library_rand.h"
#include "engine/engine_state.h"
#include "engine/kamble.h"
#include "engine/life.h"
#include "engine/neighbours.h"
#include "engine/rules.h"
#include "objects/extract.h"
#include "objects/grouping.h"
#include "objects/join.h"
#include "simd/cpu_level.h"
#include "simd/versions.h"

namespace lm::compact {
namespace {

constexpr std::int32_t noisyMatch = 13;  // of sensitivity 3 and below

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

}  // namespace

Engine::Engine() : Engine(simd::GetCpuInstructionSet()) {}

Engine::Engine(int level, Scope scope, bool redFirst) : Engine(kernelsFor(level), scope, redFirst) {}

Engine::Engine(const Kernels& kernels, Scope scope, bool redFirst)
    : kernels_(kernels), scope_(scope), redFirst_(redFirst) {}

bool Engine::suitsSize(const Shape& shape) {
  const bool known = shape.channels == 1 || shape.channels == 3 || shape.channels == 4;
  static_assert(blockPixels == 32);
  return known && shape.width >= 1 && shape.height >= 1 &&
         fitsIndices(shape.width, shape.height, shape.channels);
}

bool Engine::suits(const kAMBLE& settings, const Shape& shape) {
  return suitsSize(shape) && settings.szImgX == shape.width && settings.szImgY == shape.height &&
         settings.roiMask != nullptr && settings.frmCount == 0 &&
         settings.numNbr == std::int32_t{neighbourEntries} && settings.thrMatch >= 0 &&
         settings.thrMatch <= 254 && settings.minMatchNum >= 1 && settings.minMatchNum <= samplesPerPixel &&
         settings.thrHeuris >= 0 && settings.thrIllum >= 0;
}

bool Engine::learn(kAMBLE& settings, const std::uint8_t* frame, const Shape& shape, std::size_t stride) {
  settings.frmChn = shape.channels;
  if (frame == nullptr) return false;
  shape_ = shape;
  stride_ = stride == 0 ? shape.rowBytes() : stride;
  if (!added_.empty()) finishWatching();
  if (next_ || !forgotten_.empty()) beginWatching(frame);
  const std::int64_t before = settings.prevTimestamp;
  settings.estFrameRate();
  keepPace(settings, before);
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
  const bool alone = scope_ == Scope::detector;
  (alone ? storeSize : takeSize)(settings, shape_.width, shape_.height);
  deriveLimits(settings);
  if (!memory_.make(shape_)) return false;
  LibraryRand random;
  const auto draw = [&random] { return random.next(); };
  const auto stride = static_cast<std::int32_t>(memory_.stride());
  if (!(alone ? border_.draw(shape_, stride, draw) : border_.draw(shape_, stride, std::rand))) return false;
  recent_.make(shape_.blocks());
  erosion_.make(shape_.width, shape_.height);
  watched_ = watchedBy(settings.roiMask, shape_);
  std::copy(watched_.bits.begin(), watched_.bits.end(), memory_.region(0));
  watched_.bits = {};
  seed(frame);
  releaseRegionMasks(settings);
  started_ = true;
  return true;
}

void Engine::keepPace(const kAMBLE& settings, std::int64_t before) {
  if (settings.curTimestamp <= 0) {
    pace_.add(1000 / settings.frmRate);
  } else if (before != -1) {
    pace_.add(static_cast<double>(wrapSub(settings.curTimestamp, before)));
  }
}

std::size_t Engine::pixelsFrom(std::int32_t y) const {
  const std::size_t bytes = static_cast<std::size_t>(shape_.height - 1 - y) * stride_ + shape_.rowBytes();
  return bytes / static_cast<std::size_t>(shape_.channels);
}

LifeRule Engine::lifeRule(const kAMBLE& settings) const {
  const bool shared = scope_ == Scope::process;
  LifeRule rule{.limit = static_cast<float>(settings.lifeStaticFrm),
                .absorbed = absorbedLife(settings.lifeStaticFrm),
                .band2 = shared ? THRESH_SAME_PIXEL_x2 : lifeBand2,
                .band3 = shared ? THRESH_SAME_PIXEL_x3 : lifeBand3};
  if (extras_.absorbSeconds > 0) {
    const bool never = std::isinf(extras_.absorbSeconds);
    rule.limit = never ? std::numeric_limits<float>::infinity() : pace_.frames(extras_.absorbSeconds);
    rule.absorbed = rule.limit + 1;
  }
  return rule;
}

LearnRule Engine::learnRule(const kAMBLE& settings) const {
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

void Engine::learnRows(kAMBLE& settings, const std::uint8_t* frame) {
  const std::int32_t channel = ordered(comparedChannel(settings.diffChn));
  settings.diffChn = nextChannel(settings.diffChn, settings.frmChn);
  const TakeRule take = takeRule(settings, channel, ordered(comparedChannel(settings.diffChn)));
  const LearnRule rule = learnRule(settings);
  const Kernels& run = kernels_;
  LightSums sums;
  std::int32_t next = 0;
  for (std::int32_t y = 0; y < shape_.height; ++y) {
    const BlockRange learned = watched_.learned[static_cast<std::size_t>(y)];
    if (learned.empty()) continue;
    for (; next <= std::min(y + RecentRows::ahead, shape_.height - 1); ++next) {
      const BlockRange taken = watched_.taken[static_cast<std::size_t>(next)];
      if (taken.empty()) continue;
      run.takeRow(take, rowOf(frame, next), pixelsFrom(next), taken, memory_.row(next), recent_.of(next));
    }
    const LearnRow input{.pixels = rowOf(frame, y),
                         .left = pixelsFrom(y),
                         .width = shape_.width,
                         .stride = static_cast<std::int32_t>(memory_.stride()),
                         .y = y,
                         .changes = recent_.of(y),
                         .lit = {recent_.lit(y - 2), recent_.lit(y - 1), recent_.lit(y), recent_.lit(y + 1),
                                 recent_.lit(y + 2)},
                         .border = border_.row(y)};
    run.learnRow(rule, input, learned, memory_.row(y), sums);
  }
  settings.illumRatio = LightCount{watched_.pixels - sums.excluded, sums.lit}.ratio();
}

// The components of what is set after the last pass of the erosion.
const std::vector<SpannedComponent>& Engine::label(RunLabeller& runs) const {
  runs.start(shape_.width);
  for (std::int32_t y = 0; y < shape_.height; ++y) {
    if (erosion_.holds(y)) runs.addRow(erosion_.row(y), erosion_.words(), y);
  }
  return runs.number();
}

void Engine::peel() {
  erosion_.peel(extras_.peeled);
  // Kept: the last pixels of the mask are pruned by the first pixels of the region.
  const std::int32_t width = shape_.width;
  const std::int32_t pixels = width * shape_.height;
  const std::int32_t tail = pixels % pruneBlock(simd::GetCpuInstructionSet());
  for (std::int32_t i = 0; i < tail; ++i) {
    const std::int32_t pixel = pixels - tail + i;
    if (!watched_.start[static_cast<std::size_t>(i)]) erosion_.clear(pixel % width, pixel / width);
  }
}

// Index of the component of the unpeeled foreground that holds a core.
std::size_t Engine::wholeOf(const SpannedComponent& core) const {
  return wholeRuns_.componentAt(core.component.first % shape_.width, core.component.first / shape_.width);
}

std::vector<boxRect> Engine::componentBoxes(kAMBLE& settings, SmallComponents& small) {
  std::vector<boxRect> found;
  const bool full = extras_.extent == Extent::full;
  std::vector<bool> known(full ? wholeRuns_.components().size() : 0, false);
  for (const SpannedComponent& core : label(runs_)) {
    if (!isLarge(settings, core.component, small)) continue;
    const SpannedComponent* spanned = &core;
    if (full) {
      const std::size_t whole = wholeOf(core);
      if (known[whole]) continue;
      known[whole] = true;
      spanned = &wholeRuns_.components()[whole];
    }
    found.push_back(boxBetween(spanned->left - 1, spanned->top - 1, spanned->right + 1, spanned->bottom + 1,
                               shape_.width, shape_.height));
  }
  if (extras_.joinGap)
    settings.thrConnect = static_cast<float>(*extras_.joinGap * std::max(shape_.width, shape_.height));
  joinBoxes(settings, found);
  return found;
}

std::vector<boxRect> Engine::objectBoxes(const kAMBLE& settings, SmallComponents& small) {
  const std::vector<SpannedComponent>& wholes = wholeRuns_.components();
  std::vector<std::size_t> indices;  // into `pieces`, plus 1; 0 for none
  std::vector<Piece> pieces;
  indices.assign(wholes.size(), 0);
  for (const SpannedComponent& core : label(runs_)) {
    const std::size_t whole = wholeOf(core);
    std::size_t& index = indices[whole];
    if (index == 0) {
      const SpannedComponent& spanned = wholes[whole];
      pieces.push_back(pieceOf(spanned.left, spanned.top, spanned.right + 1, spanned.bottom + 1, false));
      index = pieces.size();
    }
    if (isLarge(settings, core.component, small)) pieces[index - 1].strong = true;
  }
  std::vector<boxRect> found;
  // Noise needs less sensitivity, and then objects fall into more pieces.
  const double fill = settings.thrMatch >= noisyMatch ? 0.15 : 0.3;
  for (const Piece& object : grouped(pieces, {std::max(shape_.width, shape_.height), fill})) {
    found.push_back({static_cast<float>(object.left),
                     static_cast<float>(object.top),
                     static_cast<float>(object.right - object.left),
                     static_cast<float>(object.bottom - object.top),
                     {}});
  }
  dropSmall(found, settings.minObjWPxl, settings.minObjHPxl);
  return found;
}

std::vector<boxRect> Engine::boxes(kAMBLE& settings) {
  if (!started_) return {};
  for (std::int32_t y = 0; y < shape_.height; ++y) {
    // The words of a first frame mark what has not been classified.
    if (classified_) erosion_.read(y, memory_.foreground(y), shape_.blocks());
  }
  if (extras_.extent != Extent::core) label(wholeRuns_);
  peel();
  SmallComponents small;
  std::vector<boxRect> found =
      extras_.extent == Extent::object ? objectBoxes(settings, small) : componentBoxes(settings, small);
  finishBoxes(settings, found, small);
  return found;
}

bool Engine::isForeground(std::int32_t x, std::int32_t y) const {
  const auto column = static_cast<std::size_t>(x);
  return (memory_.foreground(y)[column / blockPixels] >> (column % blockPixels) & 1) != 0;
}

}  // namespace lm::compact
