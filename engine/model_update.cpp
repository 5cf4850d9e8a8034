// Replacing samples: at once for absorbed pixels and lighting changes, once in 16 frames for slowly changing
// background.
#include <algorithm>
#include <array>
#include <bit>
#include <cassert>
#include <cstring>

#include "base/bits.h"
#include "base/integers.h"
#include "base/prefetch.h"
#include "engine/engine_state.h"
#include "engine/kamble.h"
#include "engine/neighbours.h"
#include "engine/ranges.h"
#include "engine/rules.h"
#include "simd/model_kernels.h"
#include "simd/refresh.h"

namespace {

// A copy of constant length compiles to a move or two.
void copyPixel(std::uint8_t* to, const std::uint8_t* from, std::size_t bytes) {
  if (bytes == 3) {
    std::memcpy(to, from, 3);
  } else {
    std::memcpy(to, from, bytes);
  }
}

void writeSample(kAMBLE& engine, const std::uint8_t* frame, std::size_t pixel) {
  const auto bytes = static_cast<std::size_t>(engine.frmChn);
  const std::uint8_t* value = frame + pixel * bytes;
  const std::uint32_t slot = engine.sampleCursor[pixel];
  assert(slot < BgModel::numSamples);
  engine.sampleCursor[pixel] =
      lm::nextSlot(slot, engine.lockSegStart, engine.lockSegEnd, BgModel::numSamples);
  copyPixel(engine.bgModel[pixel].samples[slot], value, bytes);
  copyPixel(engine.bgImg + pixel * bytes, value, bytes);
}

// Whether it is this pixel's turn for the slow refresh. The pixel was foreground or has changed.
bool isRefreshDue(kAMBLE& engine, std::size_t pixel) {
  if (engine.updTimer[pixel] > 0) return false;
  engine.updTimer[pixel] = 0;
  if (std::int64_t{engine.minDist[pixel]} <= std::int64_t{engine.thrMatch}) return false;
  const std::uint32_t turn = engine.refreshCount[pixel];
  engine.refreshCount[pixel] = turn + 1 == lm::refreshCycle ? 0 : turn + 1;
  return turn == lm::refreshTurn;
}

// Blocks found before the first of them is processed, so that cursors and samples are prefetched during the
// search.
constexpr std::size_t blocksAhead = 64;

// Pixels that wait for the same decision, grouped so that their data can be prefetched together.
class PixelList {
 public:
  // Those of the block at `begin` whose bits are set.
  void append(std::size_t begin, std::uint32_t bits) {
    const auto count = static_cast<std::size_t>(std::popcount(bits));
    assert(size_ + count <= capacity);
    // Few blocks have more than four; always writing four avoids a mispredicted branch.
    for (std::size_t done = 0; done < count; done += step) {
      for (std::size_t i = 0; i < step; ++i, bits &= bits - 1) {
        pixels_[size_ + done + i] =
            static_cast<std::uint32_t>(begin) + static_cast<std::uint32_t>(std::countr_zero(bits));
      }
    }
    size_ += count;
  }

  void append(std::uint32_t pixel, bool wanted) {
    assert(size_ + static_cast<std::size_t>(wanted) <= capacity);
    pixels_[size_] = pixel;
    size_ += static_cast<std::size_t>(wanted);
  }

  void clear() { size_ = 0; }
  const std::uint32_t* begin() const { return pixels_.data(); }
  const std::uint32_t* end() const { return pixels_.data() + size_; }

 private:
  static constexpr std::size_t step = 4;
  static constexpr std::size_t capacity = blocksAhead * lm::blockPixels;
  std::array<std::uint32_t, capacity + step> pixels_;
  std::size_t size_ = 0;
};

template <typename T>
void prefetch(const T* plane, const PixelList& pixels) {
  for (const std::uint32_t pixel : pixels) lm::prefetch(plane + pixel);
}

// Blocks with work, and their pixels by what has to be decided.
struct Batch {
  std::array<lm::UpdateBlock, blocksAhead> blocks;
  std::size_t size = 0;
  PixelList lit;      // whose lighting change is followed if a neighbour changed as well
  PixelList both;     // the same; otherwise candidates for the slow refresh
  PixelList changed;  // candidates for the slow refresh
  PixelList written;  // whose samples are replaced

  void clear() {
    for (PixelList* list : {&lit, &both, &changed, &written}) list->clear();
  }
};

// Whether the light of a neighbour of the pixel, the next one in turn, changed as well. `distances`: of the
// pixel's block, or null.
bool neighbourChanged(kAMBLE& engine, const int* distances, std::size_t pixel) {
  const std::uint32_t entry = engine.nbrCursor[pixel];
  assert(entry < lm::countOf(engine.numNbr));
  engine.nbrCursor[pixel] = lm::nextInRing(entry, engine.numNbr);
  const std::int64_t neighbour = distances != nullptr ? static_cast<std::int64_t>(pixel) + distances[entry]
                                                      : engine.nbrIdx[pixel][entry];
  return engine.illumDiff[neighbour == -1 ? pixel : static_cast<std::size_t>(neighbour)] > engine.thrIllum;
}

// A lighting change over much of the scene is followed at once, a local one only together with a neighbour.
void sortPixels(kAMBLE& engine, const lm::NeighbourDistances& neighbours, Batch& batch) {
  const bool everywhere = lm::isGlobalChange(engine.illumRatio);
  for (std::size_t i = 0; i < batch.size; ++i) {
    const std::size_t begin = batch.blocks[i].begin;
    const lm::UpdateWork& work = batch.blocks[i].work;
    assert(lm::fitsIn(work.absorbed | work.lit | work.changed, engine.bgModel.size() - begin));
    for (std::uint32_t left = work.absorbed; left != 0; left &= left - 1) {
      engine.absorbMask[begin + static_cast<std::size_t>(std::countr_zero(left))] = 0;
    }
    std::uint32_t followed = everywhere ? work.lit : 0;
    std::uint32_t asking = work.lit & ~followed;
    if (asking != 0 && neighbours.of(begin) == nullptr) {
      lm::forEachBit(asking, [&](std::size_t k) {
        followed |= static_cast<std::uint32_t>(neighbourChanged(engine, nullptr, begin + k)) << k;
      });
      asking = 0;
    }
    batch.written.append(begin, work.absorbed | followed);
    batch.lit.append(begin, asking & ~work.changed);
    batch.both.append(begin, asking & work.changed);
    batch.changed.append(begin, work.changed & ~asking & ~followed);
  }
}

// `distances`: of interior blocks, where all of these pixels are.
void followLight(kAMBLE& engine, const int* distances, Batch& batch) {
  for (const PixelList* pixels : {&batch.lit, &batch.both}) prefetch(engine.nbrCursor, *pixels);
  for (const std::uint32_t pixel : batch.lit) {
    batch.written.append(pixel, neighbourChanged(engine, distances, pixel));
  }
  for (const std::uint32_t pixel : batch.both) {
    const bool followed = neighbourChanged(engine, distances, pixel);
    batch.written.append(pixel, followed);
    batch.changed.append(pixel, !followed);
  }
}

void refresh(kAMBLE& engine, Batch& batch) {
  prefetch(engine.minDist, batch.changed);
  prefetch(engine.refreshCount, batch.changed);
  for (const std::uint32_t pixel : batch.changed) {
    if (!isRefreshDue(engine, pixel)) continue;
    engine.updTimer[pixel] = lm::refreshRest;
    batch.written.append(pixel, true);
  }
}

void writeSamples(kAMBLE& engine, const std::uint8_t* frame, const PixelList& pixels) {
  prefetch(engine.sampleCursor, pixels);
  for (const std::uint32_t pixel : pixels) {
    lm::prefetchToWrite(engine.bgModel[pixel].samples[engine.sampleCursor[pixel]]);
  }
  for (const std::uint32_t pixel : pixels) writeSample(engine, frame, pixel);
}

void updateBatch(kAMBLE& engine, const std::uint8_t* frame, const lm::NeighbourDistances& neighbours,
                 Batch& batch) {
  batch.clear();
  sortPixels(engine, neighbours, batch);
  followLight(engine, neighbours.inside(), batch);
  refresh(engine, batch);
  writeSamples(engine, frame, batch.written);
}

}  // namespace

float lm::LightCount::ratio() const {
  constexpr std::int64_t limit = 1 << 24;
  if (examined == 0) return 0.0F;
  return static_cast<float>(std::min(changed, limit)) / static_cast<float>(std::min(examined, limit));
}

void lm::updateRange(kAMBLE& engine, const std::uint8_t* frame, std::size_t begin, std::size_t end,
                     const NeighbourDistances& distances, LightCount& light) {
  assert(begin <= end && end <= engine.bgModel.size());
  const ModelKernels& kernels = modelKernels();
  const UpdatePlanes planes{.roiMask = engine.roiMask,
                            .rdDiff = engine.rdDiff,
                            .prevFgMask = engine.prevFgMask,
                            .fgMask = engine.fgMask,
                            .absorbMask = engine.absorbMask,
                            .illumDiff = engine.illumDiff,
                            .updTimer = engine.updTimer,
                            .unchanged = engine.thrHeuris,
                            .sameLight = engine.thrIllum,
                            .absorbing = engine.ghostSuppression,
                            .watchLight = engine.illumChange};
  Batch batch;
  while (begin < end) {
    batch.size = kernels.findUpdateWork(planes, begin, end, batch.blocks.data(), blocksAhead, light.examined);
    assert(batch.size <= blocksAhead);
    for (std::size_t i = 0; i < batch.size; ++i) light.changed += std::popcount(batch.blocks[i].work.lit);
    updateBatch(engine, frame, distances, batch);
  }
}

bool lm::canUpdate(const kAMBLE& engine) {
  return engine.roiMask != nullptr && engine.fgMask != nullptr && engine.prevFgMask != nullptr &&
         engine.rdDiff != nullptr && engine.curFrame != nullptr && engine.absorbMask != nullptr &&
         engine.minDist != nullptr && engine.bgImg != nullptr && engine.updTimer != nullptr &&
         engine.refreshCount != nullptr && engine.sampleCursor != nullptr && engine.nbrCursor != nullptr &&
         (!engine.illumChange || engine.illumDiff != nullptr) &&
         engine.nbrIdx.size() == engine.bgModel.size() && lm::hasModel(engine) && lm::holdsFrames(engine);
}

bool kAMBLE::updateModel_ncv() {
  if (!lm::canUpdate(*this)) return false;
  lm::LightCount light;
  lm::updateRange(*this, curFrame, 0, lm::countOf(numPixel), lm::NeighbourDistances(), light);
  illumRatio = light.ratio();
  return true;
}
