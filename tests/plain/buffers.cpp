// Allocation on the first frame, and release.
#include <algorithm>
#include <cstdlib>

#include "tests/plain/model.h"

namespace plain {
namespace {

template <class T>
void makeOnce(std::vector<T>& plane, std::size_t n, T value = T{}) {
  if (plane.empty()) plane.assign(n, value);
}

}  // namespace

// Whether the stored frames hold all of the model's pixels with the channels of the last frame.
bool Model::holdsFrames() const {
  const bool known = frmChn == 1 || frmChn == 3 || frmChn == 4;
  const std::size_t bytes = static_cast<std::size_t>(numPixel) * static_cast<std::size_t>(frmChn);
  const auto holds = [bytes](const std::vector<Byte>& frame) {
    return frame.empty() || frame.size() >= bytes;
  };
  return known && holds(curFrame) && holds(prevFrame) && holds(bgImg);
}

bool Model::initialization(int w, int h) {
  szImgX = w;
  szImgY = h;
  numPixel = w * h;
  return initBuffer() && holdsFrames() && seed();
}

bool Model::initBuffer() {
  const std::size_t n = static_cast<std::size_t>(szImgX * szImgY);
  markIf(!roiMask.empty() && roiMask.size() < n, Branch::roiMaskShorterThanFrame);
  roiMask.resize(std::max(roiMask.size(), n));
  for (std::vector<Region>* regions : {&roiInclude, &roiExclude}) {
    for (Region& region : *regions) {
      if (!region.mask.empty()) region.mask.resize(std::max(region.mask.size(), n));
    }
  }
  const std::int32_t pixels = szImgX * szImgY;
  if (planePixels_ < pixels) releasePlanes();
  planePixels_ = planePixels_ == 0 ? pixels : std::min(planePixels_, pixels);
  makePlanes(n);
  // An engine that is sized again resets some of this and keeps the rest.
  std::fill_n(fgLife.begin(), n, 0.0F);
  bgModel.resize(n);
  bgImg.assign(n * static_cast<std::size_t>(frmChn), 0);
  nbrIdx.clear();
  nbr4Idx.resize(n);
  for (int dx = -2; dx <= 2; ++dx) {
    for (int dy = -2; dy <= 2; ++dy) nbrOffset.push_back({dx, dy});
  }
  for (int y = 0; y < szImgY; ++y) {
    for (int x = 0; x < szImgX; ++x) findNeighbours(x, y);
  }
  thrConnect = 0.03125F * static_cast<float>(std::max(szImgX, szImgY));
  minObjWPxl = truncated(static_cast<float>(szImgX) * minObjW);
  minObjHPxl = truncated(static_cast<float>(szImgY) * minObjH);
  return true;
}

void Model::makePlanes(std::size_t n) {
  for (std::vector<Byte>* plane : {&fgMask, &absorbMask}) makeOnce(*plane, n);
  makeOnce(updTimer, n);
  for (std::vector<std::uint32_t>* plane : {&nbrCursor, &sampleCursor, &refreshCount}) makeOnce(*plane, n);
  makeOnce(minDist, n, 255U);
  makeOnce(fgLife, n);
}

void Model::releasePlanes() {
  planePixels_ = 0;
  for (std::vector<Byte>* plane : {&fgMask, &absorbMask, &rdDiff, &illumDiff, &prevFgMask}) plane->clear();
  updTimer.clear();
  for (std::vector<std::uint32_t>* plane : {&nbrCursor, &sampleCursor, &refreshCount, &minDist, &labelMap}) {
    plane->clear();
  }
  fgLife.clear();
  labelRows.clear();
}

void Model::destroyBuffer() {
  releasePlanes();
  for (std::vector<Byte>* plane : {&roiMask, &bgImg, &curFrame, &prevFrame}) plane->clear();
  bgModel.clear();
  nbrIdx.clear();
  nbr4Idx.clear();
}

void Model::findNeighbours(int x, int y) {
  const auto indexOf = [&](int column, int row) {
    const bool in = column >= 0 && column < szImgX && row >= 0 && row < szImgY;
    return in ? row * szImgX + column : -1;
  };
  std::vector<std::int32_t> around;
  for (std::size_t k = 0; k < static_cast<std::size_t>(numNbr); ++k) {
    around.push_back(indexOf(x + nbrOffset[k].x, y + nbrOffset[k].y));
  }
  for (std::int32_t& entry : around) {
    // Positions outside the frame are replaced by copies of random ones inside.
    while (entry == -1) entry = around[static_cast<std::size_t>(std::rand() % numNbr)];
  }
  nbrIdx.push_back(around);
  // An entry without a neighbour keeps its value: -1, unless a host wrote it.
  const auto store = [](std::int32_t& entry, int neighbour) {
    if (neighbour != -1) entry = neighbour;
  };
  FourNeighbours& direct = nbr4Idx[nbrIdx.size() - 1];
  store(direct.up, indexOf(x, y - 1));
  store(direct.right, indexOf(x + 1, y));
  store(direct.down, indexOf(x, y + 1));
  store(direct.left, indexOf(x - 1, y));
}

}  // namespace plain
