// From the foreground mask of a frame to the boxes of what moves.
#include <algorithm>

#include "base/aligned.h"
#include "base/integers.h"
#include "engine/kamble.h"
#include "objects/extract.h"
#include "objects/join.h"
#include "objects/region_names.h"
#include "objects/scratch.h"
#include "objects/small_components.h"
#include "simd/simd.h"

namespace {

// Whether the engine was sized, and for the frame size that it states now.
bool isSized(const kAMBLE& engine) {
  const std::vector<std::uint32_t*>& table = lm::stateOf(engine).labelTable;
  const bool tableFits = engine.labelRows == nullptr || engine.labelRows != table.data() ||
                         table.size() == lm::countOf(engine.szImgY);
  return engine.szImgX >= 1 && engine.numPixel >= 1 && tableFits &&
         std::int64_t{engine.szImgX} * engine.szImgY == engine.numPixel && engine.roiMask != nullptr &&
         engine.nbr4Idx.size() == lm::countOf(engine.numPixel);
}

// Foreground becomes 1 and loses three layers, then what lies outside the regions: dilate_ncv_fast(mask, 255,
// 1, 2), erode_ncv_fast(mask, 1, 0, 3) and pruning, the first two in one go.
void cleanMask(kAMBLE& engine, std::uint8_t* mask) {
  lm::MaskBits& bits = lm::scratchOf(engine).mask;
  bits.read(mask, lm::countOf(lm::stateOf(engine).nbrWidth), lm::countOf(engine.numPixel),
            {.set = 255, .relabel = 1, .cleared = 0});
  bits.peel(3, engine.morphList);
  bits.write(mask);
  simd::pruneFgByRoi(mask, engine.roiMask, engine.numPixel);
}

// Makes the label map and the row table where they are missing. False when an allocation fails.
bool makeLabels(kAMBLE& engine) {
  const bool blank = engine.labelMap == nullptr && engine.labelRows == nullptr;
  bool made = lm::makeOnce(engine.labelMap, engine.numPixel);
  if (engine.labelRows == nullptr) {
    std::vector<std::uint32_t*>& table = lm::stateOf(engine).labelTable;
    table.assign(lm::countOf(engine.szImgY), nullptr);
    engine.labelRows = table.data();
  }
  for (std::int32_t row = 0; row < engine.szImgY; ++row) {
    made &= lm::makeOnce(engine.labelRows[row], engine.szImgX);
  }
  if (!made) return false;
  const lm::LabelPlanes planes{
      .map = engine.labelMap, .rows = engine.labelRows, .width = engine.szImgX, .height = engine.szImgY};
  lm::scratchOf(engine).labels.use(planes, blank);
  return true;
}

// The same where the sides of the frame were configured anew since the neighbour table was made: the table
// says which pixels are neighbours, the sides say where they lie.
std::vector<boxRect> turnedBoxesOf(kAMBLE& engine, const std::uint8_t* mask, lm::SmallComponents& small) {
  const std::int32_t width = engine.szImgX;
  simd::cvt_u8_to_u32(mask, engine.labelMap, lm::countOf(engine.numPixel));
  const std::vector<ccObj> components = engine.connectedComponent(engine.labelMap, 1);
  const std::uint32_t* row = engine.labelMap;
  for (std::int32_t y = 0; y < engine.szImgY; ++y, row += width) std::copy_n(row, width, engine.labelRows[y]);
  std::vector<boxRect> boxes;
  for (const ccObj& component : components) {
    const std::int32_t x = component.first % width;
    const std::int32_t y = component.first / width;
    if (component.count >= engine.thrCcPxl2) {
      const auto label = static_cast<int>(component.label);
      boxes.push_back(findBoundingBox(engine.labelRows, label, width, engine.szImgY, x, y));
    } else if (engine.autoSensitivity) {
      small.add(x, y);
    }
  }
  return boxes;
}

}  // namespace

std::vector<boxRect> lm::boxesOf(const kAMBLE& engine, const std::vector<SpannedComponent>& components,
                                 SmallComponents& small) {
  std::vector<boxRect> boxes;
  for (const SpannedComponent& spanned : components) {
    if (spanned.component.count >= engine.thrCcPxl2) {
      boxes.push_back(boxBetween(spanned.left - 1, spanned.top - 1, spanned.right + 1, spanned.bottom + 1,
                                 engine.szImgX, engine.szImgY));
    } else if (engine.autoSensitivity) {
      small.add(spanned.component.first % engine.szImgX, spanned.top);
    }
  }
  return boxes;
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
  if (mask == nullptr || !isSized(*this)) return {};
  cleanMask(*this, mask);
  if (!makeLabels(*this)) return {};

  lm::SmallComponents small;
  lm::ObjectScratch& scratch = lm::scratchOf(*this);
  std::vector<boxRect> boxes = lm::stateOf(*this).nbrWidth == szImgX
                                   ? lm::boxesOf(*this, scratch.labels.label(mask, scratch.mask), small)
                                   : turnedBoxesOf(*this, mask, small);
  lm::joinBoxes(*this, boxes);
  // Kept: names are looked up where the mask holds 255, and by now foreground is 1, so none are found.
  addRoiName2Obj(boxes, roiInclude, mask, szImgX, szImgY);
  lm::finishBoxes(*this, boxes, small);
  return boxes;
}
