// The first-frame set-up of the engine's memory, and its release.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <utility>

#include "base/aligned.h"
#include "base/integers.h"
#include "engine/engine_state.h"
#include "engine/kamble.h"
#include "engine/neighbours.h"

namespace {

// Extends `mask` from `have` to `need` bytes: the new ones count as outside. False leaves it as it was.
bool growRoiMask(std::uint8_t*& mask, std::size_t have, std::size_t need) {
  auto* larger = static_cast<std::uint8_t*>(lm::allocateAligned(static_cast<std::int64_t>(need)));
  if (larger == nullptr) return false;
  std::memcpy(larger, mask, have);
  std::memset(larger + have, 0, need - have);
  lm::release(mask);
  mask = larger;
  return true;
}

// The same for a region's mask, if it is the one that was `made`.
void growRegionMask(std::uint8_t*& mask, lm::Made& made, std::size_t need) {
  if (!made.isTooSmall(mask, need)) return;
  auto* larger = new std::uint8_t[need]();
  std::copy_n(mask, made.bytes, larger);
  delete[] mask;
  mask = larger;
  made = {mask, need};
}

// Calls act(pixel, x, y) for every pixel.
template <typename Act>
void forEachPixel(const lm::FrameShape& shape, Act act) {
  std::int32_t x = 0;
  std::int32_t y = 0;
  for (std::int32_t pixel = 0; pixel < shape.count; ++pixel) {
    act(static_cast<std::size_t>(pixel), x, y);
    if (++x < shape.width) continue;
    x = 0;
    ++y;
  }
}

// Without rows the arrays stay null.
// Kept: arrays from an earlier call are replaced, not freed.
void makeNeighbourArrays(kAMBLE& engine, const lm::FrameShape& shape) {
  engine.nbrIdx.resize(static_cast<std::size_t>(shape.count), nullptr);
  if (shape.width < 1) return;
  const std::function<int()> draw = std::rand;
  forEachPixel(shape, [&](std::size_t pixel, std::int32_t x, std::int32_t y) {
    engine.nbrIdx[pixel] = new int[static_cast<std::size_t>(engine.numNbr)];
    lm::fillNeighbours(engine.nbrIdx[pixel], engine.numNbr, engine.nbrOffset, shape, x, y, draw);
  });
}

void makeDirectNeighbours(kAMBLE& engine, const lm::FrameShape& shape) {
  engine.nbr4Idx.resize(static_cast<std::size_t>(shape.count), int128_t{-1, -1, -1, -1, {}});
  if (shape.width < 1) return;
  forEachPixel(shape, [&](std::size_t pixel, std::int32_t x, std::int32_t y) {
    lm::fillDirectNeighbours(engine.nbr4Idx[pixel], shape, x, y);
  });
}

// Extends roiMask and the region masks that setParam made to `count` pixels: the new ones count as outside.
// False when an allocation fails.
bool fitRegionMasks(kAMBLE& engine, std::int32_t count) {
  const std::size_t need = lm::countOf(count);
  lm::EngineState& state = lm::stateOf(engine);
  if (state.roiMask.isTooSmall(engine.roiMask, need)) {
    if (!growRoiMask(engine.roiMask, state.roiMask.bytes, need)) return false;
    state.roiMask = {engine.roiMask, need};
  }
  for (std::vector<polygon>* regions : {&engine.roiInclude, &engine.roiExclude}) {
    for (polygon& region : *regions) {
      for (lm::Made& made : state.regionMasks) growRegionMask(region.mask, made, need);
    }
  }
  return true;
}

// Releases the planes whose size is planePixels.
void releasePlanes(kAMBLE& engine) {
  for (std::uint8_t** plane : {&engine.fgMask, &engine.auxMask, &engine.absorbMask, &engine.rdDiff,
                               &engine.illumDiff, &engine.prevFgMask}) {
    lm::release(*plane);
  }
  lm::release(engine.updTimer);
  for (std::uint32_t** plane : {&engine.auxMap, &engine.nbrCursor, &engine.sampleCursor, &engine.refreshCount,
                                &engine.minDist, &engine.labelMap}) {
    lm::release(*plane);
  }
  lm::releaseArray(engine.fgLife);
  if (engine.state != nullptr) engine.state->planePixels = 0;
  if (engine.labelRows == nullptr) return;
  // A table of the engine's own keeps its height, whatever height was configured since.
  const std::vector<std::uint32_t*>& table = lm::stateOf(std::as_const(engine)).labelTable;
  const std::size_t rows = engine.labelRows == table.data() ? table.size() : lm::countOf(engine.szImgY);
  for (std::size_t row = 0; row < rows; ++row) lm::release(engine.labelRows[row]);
  // Kept: only the rows are released here; the table of row pointers belongs to object extraction
  // (EngineState::labelTable).
  engine.labelRows = nullptr;
}

}  // namespace

void lm::storeSize(kAMBLE& engine, std::int32_t width, std::int32_t height) {
  engine.szImgX = width;
  engine.szImgY = height;
  engine.numPixel = wrapMul(width, height);
}

void lm::takeSize(kAMBLE& engine, std::int32_t width, std::int32_t height) {
  storeSize(engine, width, height);
  std::fprintf(stderr, "W, H, Pixels = %d, %d, %d\n", width, height, engine.numPixel);
}

void lm::deriveLimits(kAMBLE& engine) {
  const auto width = static_cast<float>(engine.szImgX);
  const auto height = static_cast<float>(engine.szImgY);
  engine.thrConnect = 0.03125F * (engine.szImgX > engine.szImgY ? width : height);
  engine.minObjWPxl = toInt32(width * engine.minObjW);
  engine.minObjHPxl = toInt32(height * engine.minObjH);
}

bool kAMBLE::initialization_ncv(int w, int h) {
  lm::takeSize(*this, w, h);
  return initBuffer_ncv() && lm::holdsFrames(*this) && initModel_ncv();
}

bool kAMBLE::initBuffer_ncv() {
  const std::int32_t count = lm::wrapMul(szImgX, szImgY);
  if (!fitRegionMasks(*this, count)) return false;
  std::int32_t& planePixels = lm::stateOf(*this).planePixels;
  if (planePixels != 0 && planePixels < count) releasePlanes(*this);
  planePixels = planePixels == 0 ? count : std::min(planePixels, count);

  bool made = lm::makeRoiMask(*this, count);
  for (std::uint8_t** plane : {&fgMask, &auxMask, &absorbMask}) made &= lm::makeOnce(*plane, count);
  made &= lm::makeOnce(updTimer, count);
  for (std::uint32_t** plane : {&auxMap, &nbrCursor, &sampleCursor, &refreshCount}) {
    made &= lm::makeOnce(*plane, count);
  }
  if (minDist == nullptr && lm::makeOnce(minDist, count)) std::fill_n(minDist, lm::countOf(count), 255U);
  made &= minDist != nullptr;
  if (fgLife == nullptr) fgLife = new float[static_cast<std::size_t>(count)];
  std::fill_n(fgLife, lm::countOf(count), 0.0F);

  // Kept: the list grows by another 25 on every call; only the first numNbr are read.
  const std::vector<pnt> offsets = lm::neighbourOffsets();
  nbrOffset.insert(nbrOffset.end(), offsets.begin(), offsets.end());
  const lm::FrameShape shape{szImgX, szImgY, count};
  makeNeighbourArrays(*this, shape);
  makeDirectNeighbours(*this, shape);
  morphList.reserve(static_cast<std::size_t>(count));
  bgModel.resize(static_cast<std::size_t>(count));

  // Kept: always a new one; an earlier background image is not freed.
  const std::int32_t bytes = lm::wrapMul(count, frmChn);
  bgImg = nullptr;
  made &= lm::makeOnce(bgImg, bytes);
  lm::stateOf(*this).bgImg = {bgImg, lm::countOf(bytes)};

  lm::deriveLimits(*this);
  return made;
}

bool lm::makeRoiMask(kAMBLE& engine, std::int32_t count) {
  if (engine.roiMask != nullptr) return true;
  if (!makeOnce(engine.roiMask, count)) return false;
  stateOf(engine).roiMask = {engine.roiMask, countOf(count)};
  return true;
}

void lm::releaseRegionMasks(kAMBLE& engine) {
  release(engine.roiMask);
  for (std::vector<polygon>* regions : {&engine.roiInclude, &engine.roiExclude}) {
    for (polygon& region : *regions) releaseArray(region.mask);
  }
}

void lm::releaseModel(kAMBLE& engine) {
  lm::release(engine.bgImg);
  for (int*& entries : engine.nbrIdx) lm::releaseArray(entries);
}

void kAMBLE::destoryBuffer() {
  for (std::uint8_t** plane : {&roiMask, &bgImg, &curFrame, &prevFrame}) lm::release(*plane);
  releasePlanes(*this);
  bgModel.clear();
  for (int*& entries : nbrIdx) lm::releaseArray(entries);
  nbrIdx.clear();
  nbr4Idx.clear();
  if (state == nullptr) return;
  state->curFrame = state->prevFrame = state->bgImg = state->roiMask = {};
}
