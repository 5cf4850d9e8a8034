// From the foreground mask of a frame to the boxes of what moves.
#include "objects/extract.h"

#include <algorithm>

#include "base/aligned.h"
#include "base/integers.h"
#include "engine/engine_state.h"
#include "engine/kamble.h"
#include "objects/join.h"
#include "objects/neighbour_test.h"
#include "objects/region_names.h"
#include "simd/simd.h"

namespace {

// Whether the planes and tables exist and have room for the sides that the engine states now, which a host
// may have changed.
bool canExtract(const kAMBLE& engine) {
  const lm::EngineState& state = lm::stateOf(engine);
  const bool ownTable = engine.labelRows != nullptr && engine.labelRows == state.labelTable.data();
  const bool tableFits = !ownTable || (lm::countOf(engine.szImgY) <= state.labelTable.size() &&
                                       engine.szImgX <= state.labelWidth);
  const bool sidesFit = engine.szImgX < 1 || engine.szImgY < 1 ||
                        std::int64_t{engine.szImgX} * engine.szImgY <= engine.numPixel;
  return engine.numPixel >= 1 && engine.roiMask != nullptr && lm::hasDirectNeighbours(engine) && tableFits &&
         sidesFit;
}

// Foreground becomes 1 and loses three layers, then what lies outside the regions.
void cleanMask(kAMBLE& engine, std::uint8_t* mask) {
  engine.dilate_ncv_fast(mask, 255, 1, 2);
  engine.erode_ncv_fast(mask, 1, 0, 3);
  simd::pruneFgByRoi(mask, engine.roiMask, engine.numPixel);
}

// Makes the row table where it is missing and copies the label map into it; a frame without pixels has no
// rows. False when an allocation fails.
bool fillLabelRows(kAMBLE& engine) {
  const std::int32_t width = engine.szImgX;
  const std::int32_t height = engine.szImgY;
  if (width < 1 || height < 1) return true;
  lm::EngineState& state = lm::stateOf(engine);
  if (engine.labelRows == nullptr) {
    state.labelTable.assign(lm::countOf(height), nullptr);
    state.labelWidth = width;
    engine.labelRows = state.labelTable.data();
  }
  const bool ownTable = engine.labelRows == state.labelTable.data();
  const std::int32_t rowLength = ownTable ? state.labelWidth : width;
  bool made = true;
  const std::uint32_t* labels = engine.labelMap;
  for (std::int32_t y = 0; y < height; ++y, labels += width) {
    made &= lm::makeOnce(engine.labelRows[y], rowLength);
    if (engine.labelRows[y] != nullptr) std::copy_n(labels, width, engine.labelRows[y]);
  }
  return made;
}

}  // namespace

lm::Position lm::firstPixel(const kAMBLE& engine, const ccObj& component) {
  if (engine.szImgX == 0) return {0, 0};
  return {component.first % engine.szImgX, component.first / engine.szImgX};
}

bool lm::isLarge(const kAMBLE& engine, const ccObj& component, SmallComponents& small) {
  if (component.count >= engine.thrCcPxl2) return true;
  const auto [x, y] = firstPixel(engine, component);
  if (engine.autoSensitivity) small.add(x, y);
  return false;
}

void lm::joinBoxes(const kAMBLE& engine, std::vector<boxRect>& boxes) {
  joinNear(boxes, engine.thrConnect);
  dropSmall(boxes, engine.minObjWPxl, engine.minObjHPxl);
  joinOverlapping(boxes);
}

void lm::finishBoxes(kAMBLE& engine, std::vector<boxRect>& boxes, SmallComponents& small) {
  toFractions(boxes, engine.szImgX, engine.szImgY);
  if (!engine.autoSensitivity) return;
  const ComponentMinimum adapted = adaptMinimum({engine.thrCcPxl2, engine.holdCcPxl}, engine.thrCcPxl,
                                                !boxes.empty(), small, engine.szImgX);
  engine.thrCcPxl2 = adapted.working;
  engine.holdCcPxl = adapted.hold;
}

std::vector<boxRect> kAMBLE::genFgObj_ncv(unsigned char* mask) {
  if (mask == nullptr || !canExtract(*this)) return {};
  cleanMask(*this, mask);
  if (!lm::makeOnce(labelMap, numPixel)) return {};
  simd::cvt_u8_to_u32(mask, labelMap, lm::countOf(numPixel));
  const std::vector<ccObj> components = connectedComponent(labelMap, 1);
  if (!fillLabelRows(*this)) return {};

  lm::SmallComponents small;
  std::vector<boxRect> boxes;
  for (const ccObj& component : components) {
    if (!lm::isLarge(*this, component, small)) continue;
    const auto [x, y] = lm::firstPixel(*this, component);
    const auto label = static_cast<int>(component.label);
    boxes.push_back(findBoundingBox(labelRows, label, szImgX, szImgY, x, y));
  }
  lm::joinBoxes(*this, boxes);
  // Kept: names are looked up where the mask holds 255, and by now foreground is 1, so none are found.
  addRoiName2Obj(boxes, roiInclude, mask, szImgX, szImgY);
  lm::finishBoxes(*this, boxes, small);
  return boxes;
}
