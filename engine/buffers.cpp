// The first-frame set-up of the engine's memory, and its release.
#include <algorithm>
#include <cstdio>
#include <cstring>

#include "engine/aligned.h"
#include "engine/kamble.h"
#include "engine/neighbours.h"
#include "engine/rules.h"

namespace {

// Makes `mask`, of `have` bytes, `need` bytes long: what is new counts as outside. False leaves it as it was.
bool growRoiMask(std::uint8_t*& mask, std::size_t have, std::size_t need) {
  auto* larger = static_cast<std::uint8_t*>(lm::allocateAligned(static_cast<std::ptrdiff_t>(need)));
  if (larger == nullptr) return false;
  std::memcpy(larger, mask, have);
  std::memset(larger + have, 0, need - have);
  lm::release(mask);
  mask = larger;
  return true;
}

// Likewise for a region's mask, where it is the one that was `made`.
void growRegionMask(std::uint8_t*& mask, kAMBLE::Made& made, std::size_t need) {
  if (mask == nullptr || mask != made.buffer || made.bytes >= need) return;
  auto* larger = new std::uint8_t[need]();
  std::copy_n(mask, made.bytes, larger);
  delete[] mask;
  mask = larger;
  made = {mask, need};
}

// `list` with `count` elements; new ones are `value`.
template <typename T>
void resizeLarge(std::vector<T>& list, std::size_t count, const T& value) {
  list.reserve(count);
  lm::adviseLarge(list.data(), count * sizeof(T));
  list.resize(count, value);
}

// Kept: arrays from an earlier call are replaced, not freed.
void makeNeighbourArrays(kAMBLE& engine, const lm::FrameShape& shape) {
  resizeLarge<int*>(engine.nbrIdx, static_cast<std::size_t>(shape.count), nullptr);
  engine.nbrWidth = shape.width;
  if (shape.width < 1) return;
  for (int*& entries : engine.nbrIdx) entries = new int[static_cast<std::size_t>(engine.numNbr)];
  lm::fillNeighbours(engine.nbrIdx, engine.numNbr, engine.nbrOffset, shape);
  engine.nbrDistances = lm::neighbourDistances(engine.nbrOffset, engine.numNbr, shape);
}

void makeDirectNeighbours(kAMBLE& engine, const lm::FrameShape& shape) {
  resizeLarge(engine.nbr4Idx, static_cast<std::size_t>(shape.count), int128_t{-1, -1, -1, -1, {}});
  if (shape.width >= 1) lm::fillDirectNeighbours(engine.nbr4Idx, shape);
}

}  // namespace

bool kAMBLE::fitRegionMasks(std::int32_t count) {
  const std::size_t need = lm::countOf(count);
  if (roiMaskMade.buffer == roiMask && roiMask != nullptr && roiMaskMade.bytes < need) {
    if (!growRoiMask(roiMask, roiMaskMade.bytes, need)) return false;
    roiMaskMade = {roiMask, need};
  }
  for (std::vector<polygon>* regions : {&roiInclude, &roiExclude}) {
    for (polygon& region : *regions) {
      for (Made& made : regionMasksMade) growRegionMask(region.mask, made, need);
    }
  }
  return true;
}

bool kAMBLE::initialization_ncv(int w, int h) {
  szImgX = w;
  szImgY = h;
  numPixel = lm::wrapMul(w, h);
  std::fprintf(stderr, "W, H, Pixels = %d, %d, %d\n", w, h, numPixel);
  return initBuffer_ncv() && holdsFrames() && initModel_ncv();
}

bool kAMBLE::initBuffer_ncv() {
  const std::int32_t count = lm::wrapMul(szImgX, szImgY);
  if (!fitRegionMasks(count)) return false;
  if (planePixels != 0 && planePixels < count) releasePlanes();
  planePixels = planePixels == 0 ? count : std::min(planePixels, count);

  bool made = true;
  if (roiMask == nullptr && lm::makeOnce(roiMask, count)) roiMaskMade = {roiMask, lm::countOf(count)};
  made &= roiMask != nullptr;
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
  resizeLarge(bgModel, static_cast<std::size_t>(count), BgModel{});

  // Kept: always a new one; an earlier background image is not freed.
  const std::int32_t bytes = lm::wrapMul(count, frmChn);
  bgImg = nullptr;
  made &= lm::makeOnce(bgImg, bytes);
  bgImgMade = {bgImg, lm::countOf(bytes)};

  thrConnect = 0.03125F * static_cast<float>(szImgX > szImgY ? szImgX : szImgY);
  minObjWPxl = lm::toInt32(static_cast<float>(szImgX) * minObjW);
  minObjHPxl = lm::toInt32(static_cast<float>(szImgY) * minObjH);
  return made;
}

void kAMBLE::releaseModel() {
  lm::release(bgImg);
  for (int*& entries : nbrIdx) lm::releaseArray(entries);
}

void kAMBLE::releasePlanes() {
  planePixels = 0;
  for (std::uint8_t** plane : {&fgMask, &auxMask, &absorbMask}) lm::release(*plane);
  lm::release(updTimer);
  for (std::uint32_t** plane : {&auxMap, &nbrCursor, &sampleCursor, &refreshCount, &minDist}) {
    lm::release(*plane);
  }
  lm::releaseArray(fgLife);
  for (std::uint8_t** plane : {&rdDiff, &illumDiff, &prevFgMask}) lm::release(*plane);
  lm::release(labelMap);
  if (labelRows == nullptr) return;
  // A table of the engine's own keeps its height, whatever height was configured since.
  const std::size_t rows = labelRows == labelTable.data() ? labelTable.size() : lm::countOf(szImgY);
  for (std::size_t row = 0; row < rows; ++row) lm::release(labelRows[row]);
  // Kept: only the rows are released here; the table of row pointers belongs to object extraction
  // (labelTable).
  labelRows = nullptr;
}

void kAMBLE::destoryBuffer() {
  for (std::uint8_t** plane : {&roiMask, &bgImg, &curFrame, &prevFrame}) lm::release(*plane);
  curFrameMade = prevFrameMade = bgImgMade = roiMaskMade = {};
  releasePlanes();
  bgModel.clear();
  for (int*& entries : nbrIdx) lm::releaseArray(entries);
  nbrIdx.clear();
  nbrDistances.clear();
  nbr4Idx.clear();
}
