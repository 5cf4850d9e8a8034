// From the foreground mask of a frame to the boxes of what moves.
#include <cstring>

#include "engine/aligned.h"
#include "engine/kamble.h"
#include "engine/rules.h"
#include "objects/component.h"
#include "objects/join.h"
#include "objects/region_names.h"
#include "objects/small_components.h"
#include "simd/simd.h"

namespace {

// Whether the engine was sized, and for the frame size that it states now.
bool isSized(const kAMBLE& engine) {
  const bool tableFits = engine.labelRows == nullptr || engine.labelRows != engine.labelTable.data() ||
                         engine.labelTable.size() == lm::countOf(engine.szImgY);
  return engine.szImgX >= 1 && engine.numPixel >= 1 && tableFits &&
         std::int64_t{engine.szImgX} * engine.szImgY == engine.numPixel && engine.roiMask != nullptr &&
         engine.nbr4Idx.size() >= lm::countOf(engine.numPixel);
}

// Foreground becomes 1 and loses three layers, then what lies outside the regions.
void cleanMask(kAMBLE& engine, std::uint8_t* mask) {
  engine.dilate_ncv_fast(mask, 255, 1, 2);
  engine.erode_ncv_fast(mask, 1, 0, 3);
  simd::pruneFgByRoi(mask, engine.roiMask, engine.numPixel);
}

// Makes the row table if it is missing and copies the label map into it. False when memory is lacking.
bool fillLabelRows(kAMBLE& engine) {
  const std::size_t width = lm::countOf(engine.szImgX);
  if (engine.labelRows == nullptr) {
    engine.labelTable.assign(lm::countOf(engine.szImgY), nullptr);
    engine.labelRows = engine.labelTable.data();
  }
  bool made = true;
  for (std::size_t row = 0; row < lm::countOf(engine.szImgY); ++row) {
    made &= lm::makeOnce(engine.labelRows[row], engine.szImgX);
    if (!made) continue;
    std::memcpy(engine.labelRows[row], engine.labelMap + row * width, width * sizeof(std::uint32_t));
  }
  return made;
}

std::vector<boxRect> boxesOf(const kAMBLE& engine, const std::vector<ccObj>& components,
                             lm::SmallComponents& small) {
  std::vector<boxRect> boxes;
  for (const ccObj& component : components) {
    const std::int32_t x = component.first % engine.szImgX;
    const std::int32_t y = component.first / engine.szImgX;
    if (component.count >= engine.thrCcPxl2) {
      boxes.push_back(findBoundingBox(engine.labelRows, static_cast<int>(component.label), engine.szImgX,
                                      engine.szImgY, x, y));
    } else if (engine.autoSensitivity) {
      small.add(x, y);
    }
  }
  return boxes;
}

}  // namespace

std::vector<boxRect> kAMBLE::genFgObj_ncv(unsigned char* mask) {
  if (mask == nullptr || !isSized(*this)) return {};
  cleanMask(*this, mask);
  if (!lm::makeOnce(labelMap, numPixel)) return {};
  simd::cvt_u8_to_u32(mask, labelMap, lm::countOf(numPixel));
  const std::vector<ccObj> components = connectedComponent(labelMap, 1);
  if (!fillLabelRows(*this)) return {};

  lm::SmallComponents small;
  std::vector<boxRect> boxes = boxesOf(*this, components, small);
  lm::joinNear(boxes, thrConnect);
  lm::dropSmall(boxes, minObjWPxl, minObjHPxl);
  lm::joinOverlapping(boxes);

  // Kept: the names are looked for where the mask holds 255, and by now foreground is 1, so none are found.
  addRoiName2Obj(boxes, roiInclude, mask, szImgX, szImgY);
  lm::toFractions(boxes, szImgX, szImgY);

  if (autoSensitivity) {
    const lm::ComponentMinimum adapted =
        lm::adaptMinimum({thrCcPxl2, holdCcPxl}, thrCcPxl, !boxes.empty(), small, szImgX);
    thrCcPxl2 = adapted.working;
    holdCcPxl = adapted.hold;
  }
  return boxes;
}
