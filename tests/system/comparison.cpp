#include "tests/system/comparison.h"

#include <algorithm>
#include <cstring>
#include <sstream>

#include "engine/kamble.h"

namespace {

// Keeps the first difference and skips the rest.
class Comparison {
 public:
  explicit Comparison(int width, int pixels)
      : width_(static_cast<std::size_t>(width)), pixels_(static_cast<std::size_t>(pixels)) {}

  const std::string& difference() const { return difference_; }

  template <class T>
  void value(const char* name, const T& engine, const T& model) {
    if (difference_.empty() && !same(engine, model)) report(name, engine, model);
  }

  // A plane of the engine, against the model's plane of as many elements; null against an empty one.
  template <class T>
  void plane(const char* name, const T* engine, const std::vector<T>& model) {
    value((std::string(name) + " made").c_str(), engine != nullptr, !model.empty());
    if (!difference_.empty() || model.empty()) return;
    elements(name, engine, model.data(), model.size(),
             std::max<std::size_t>(1, model.size() / std::max<std::size_t>(1, pixels_)));
  }

  // Elements from the given pixel on, `perPixel` for each pixel.
  template <class T>
  void elements(const char* name, const T* engine, const T* model, std::size_t count, std::size_t perPixel,
                std::size_t firstPixel = 0) {
    if (!difference_.empty() || std::memcmp(engine, model, count * sizeof(T)) == 0) return;
    std::size_t i = 0;
    while (same(engine[i], model[i])) ++i;
    report(place(name, firstPixel + i / perPixel, i % perPixel), engine[i], model[i]);
  }

 private:
  // Bitwise: the model is exact.
  template <class T>
  static bool same(const T& a, const T& b) {
    if constexpr (std::is_trivially_copyable_v<T>)
      return std::memcmp(&a, &b, sizeof(T)) == 0;
    else
      return a == b;
  }

  template <class T>
  void report(const std::string& field, const T& engine, const T& model) {
    std::ostringstream text;
    text.precision(17);
    if constexpr (std::is_arithmetic_v<T>)
      text << field << ": engine " << +engine << ", model " << +model;  // + prints a byte as a number
    else
      text << field << ": engine " << engine << ", model " << model;
    difference_ = text.str();
  }

  std::string place(const char* name, std::size_t pixel, std::size_t element) const {
    std::ostringstream text;
    text << name << " at pixel " << pixel;
    if (width_ > 0) text << " (" << pixel % width_ << ", " << pixel / width_ << ")";
    text << " [" << element << "]";
    return text.str();
  }

  std::size_t width_, pixels_;
  std::string difference_;
};

void compareSettings(Comparison& compare, const kAMBLE& engine, const plain::Model& model) {
#define COMPARE(field) compare.value(#field, engine.field, model.field)
  COMPARE(illumChange);
  COMPARE(ghostSuppression);
  COMPARE(autoSensitivity);
  COMPARE(frmChn);
  COMPARE(diffChn);
  COMPARE(numPixel);
  COMPARE(szImgX);
  COMPARE(szImgY);
  COMPARE(numNbr);
  COMPARE(thrMatch);
  COMPARE(minMatchNum);
  COMPARE(thrIllum);
  COMPARE(thrHeuris);
  COMPARE(lifeStaticFrm);
  COMPARE(lifeStatic);
  COMPARE(lockSegStart);
  COMPARE(lockSegEnd);
  COMPARE(numSegmentLock);
  COMPARE(numPeriodLock);
  COMPARE(minObjW);
  COMPARE(minObjH);
  COMPARE(minObjWPxl);
  COMPARE(minObjHPxl);
  COMPARE(thrConnect);
  COMPARE(frmRate);
  COMPARE(curTimestamp);
  COMPARE(prevTimestamp);
  COMPARE(prevTime.tv_sec);
  COMPARE(prevTime.tv_usec);
  COMPARE(curTime.tv_sec);
  COMPARE(curTime.tv_usec);
  COMPARE(elapsedUs);
  COMPARE(usPerSec);
  COMPARE(frmCount);
  COMPARE(skipFrame);
}

void compareNeighbours(Comparison& compare, const kAMBLE& engine, const plain::Model& model) {
  compare.value("nbrOffset.size", engine.nbrOffset.size(), model.nbrOffset.size());
  for (std::size_t k = 0; k < std::min(engine.nbrOffset.size(), model.nbrOffset.size()); ++k) {
    compare.value("nbrOffset.x", engine.nbrOffset[k].x, model.nbrOffset[k].x);
    compare.value("nbrOffset.y", engine.nbrOffset[k].y, model.nbrOffset[k].y);
  }
  compare.value("nbrIdx.size", engine.nbrIdx.size(), model.nbrIdx.size());
  compare.value("nbr4Idx.size", engine.nbr4Idx.size(), model.nbr4Idx.size());
  if (!compare.difference().empty()) return;
  for (std::size_t i = 0; i < model.nbrIdx.size(); ++i) {
    compare.elements("nbrIdx", engine.nbrIdx[i], model.nbrIdx[i].data(), model.nbrIdx[i].size(),
                     model.nbrIdx[i].size(), i);
    const int128_t& direct = engine.nbr4Idx[i];
    compare.value("nbr4Idx.up", direct.up, model.nbr4Idx[i].up);
    compare.value("nbr4Idx.right", direct.right, model.nbr4Idx[i].right);
    compare.value("nbr4Idx.down", direct.down, model.nbr4Idx[i].down);
    compare.value("nbr4Idx.left", direct.left, model.nbr4Idx[i].left);
  }
}

void comparePlanes(Comparison& compare, const kAMBLE& engine, const plain::Model& model) {
#define COMPARE_PLANE(field) compare.plane(#field, engine.field, model.field)
  COMPARE_PLANE(curFrame);
  COMPARE_PLANE(prevFrame);
  COMPARE_PLANE(rdDiff);
  COMPARE_PLANE(illumDiff);
  COMPARE_PLANE(fgMask);
  COMPARE_PLANE(prevFgMask);
  COMPARE_PLANE(minDist);
  COMPARE_PLANE(fgLife);
  COMPARE_PLANE(absorbMask);
  COMPARE_PLANE(nbrCursor);
  COMPARE_PLANE(refreshCount);
  COMPARE_PLANE(updTimer);
  COMPARE_PLANE(sampleCursor);
  COMPARE_PLANE(bgImg);
  compare.value("bgModel.size", engine.bgModel.size(), model.bgModel.size());
  if (!model.bgModel.empty()) {
    // Both have twenty samples of four bytes per pixel.
    compare.elements("bgModel", &engine.bgModel[0].samples[0][0], &model.bgModel[0][0][0],
                     model.bgModel.size() * sizeof(BgModel), sizeof(BgModel));
  }
  COMPARE(illumRatio);
}

void compareRegions(Comparison& compare, const kAMBLE& engine, const plain::Model& model) {
  if (!model.roiMask.empty()) COMPARE_PLANE(roiMask);
  const auto masks = [&](const char* name, const std::vector<polygon>& ours,
                         const std::vector<plain::Region>& plain) {
    compare.value(name, ours.size(), plain.size());
    for (std::size_t i = 0; i < std::min(ours.size(), plain.size()); ++i) {
      compare.value(name, ours[i].name, plain[i].name);
      // A mask made for zero pixels has no counterpart in the model.
      if (plain[i].mask.empty()) continue;
      compare.plane(name, static_cast<const std::uint8_t*>(ours[i].mask), plain[i].mask);
    }
  };
  masks("roiInclude", engine.roiInclude, model.roiInclude);
  masks("roiExclude", engine.roiExclude, model.roiExclude);
}

void compareObjects(Comparison& compare, const lightMotion& detector, const plain::Model& model) {
  const kAMBLE& engine = *detector.engine;
  COMPARE_PLANE(labelMap);
  if (!model.labelMap.empty()) {
    for (std::size_t y = 0; y < model.labelRows.size(); ++y) {
      const std::size_t width = model.labelRows[y].size();
      compare.elements("labelRows", engine.labelRows[y], model.labelRows[y].data(), width, 1, y * width);
    }
  }
  COMPARE(thrCcPxl);
  COMPARE(thrCcPxl2);
  COMPARE(holdCcPxl);
  compare.value("boxes", detector.objList.size(), model.boxes.size());
  for (std::size_t i = 0; i < std::min(detector.objList.size(), model.boxes.size()); ++i) {
    compare.value("box.x", detector.objList[i].x, model.boxes[i].x);
    compare.value("box.y", detector.objList[i].y, model.boxes[i].y);
    compare.value("box.width", detector.objList[i].width, model.boxes[i].width);
    compare.value("box.height", detector.objList[i].height, model.boxes[i].height);
    compare.value("box.names", detector.objList[i].names.size(), std::size_t{0});
  }
}

}  // namespace

std::string firstDifference(const lightMotion& detector, const plain::Model& model) {
  // In the order of computation, so that the first difference is closest to its cause.
  Comparison compare(model.szImgX, model.numPixel);
  compareRegions(compare, *detector.engine, model);
  compareSettings(compare, *detector.engine, model);
  compareNeighbours(compare, *detector.engine, model);
  comparePlanes(compare, *detector.engine, model);
  compareObjects(compare, detector, model);
  return compare.difference();
}
