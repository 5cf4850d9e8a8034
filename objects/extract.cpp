// From the foreground mask of a frame to the boxes of what moves.
#include <cstring>

#include "engine/aligned.h"
#include "engine/kamble.h"
#include "engine/rules.h"
#include "objects/join.h"
#include "objects/region_names.h"
#include "objects/runs.h"
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

// Makes the label map and the row table where they are missing. False when memory is lacking.
bool makeLabels(kAMBLE& engine) {
  const std::size_t height = lm::countOf(engine.szImgY);
  if (engine.labelMap == nullptr || engine.labelRowHolds.size() != height)
    engine.labelRowHolds.assign(height, true);
  bool made = lm::makeOnce(engine.labelMap, engine.numPixel);
  if (engine.labelRows == nullptr) {
    engine.labelTable.assign(height, nullptr);
    engine.labelRows = engine.labelTable.data();
    engine.labelRowHolds.assign(height, true);
  }
  for (std::size_t row = 0; row < height; ++row) made &= lm::makeOnce(engine.labelRows[row], engine.szImgX);
  return made;
}

bool isBlank(const std::uint8_t* row, std::size_t width) {
  return row[0] == 0 && std::memcmp(row, row + 1, width - 1) == 0;
}

// Labels the mask in labelMap and labelRows and lists its components. Rows that were blank in the frame
// before and still are cost nothing.
std::vector<lm::SpannedComponent> labelMask(kAMBLE& engine, const std::uint8_t* mask) {
  const std::size_t width = lm::countOf(engine.szImgX);
  const std::size_t height = lm::countOf(engine.szImgY);
  std::vector<bool>& holds = engine.labelRowHolds;
  lm::RunLabeller labeller(engine.szImgX);
  struct Row {
    std::size_t y;
    bool blank;
  };
  std::vector<Row> touched;
  for (std::size_t y = 0; y < height; ++y) {
    const std::uint8_t* row = mask + y * width;
    const bool blank = isBlank(row, width);
    if (blank && !holds[y]) continue;
    touched.push_back({y, blank});
    holds[y] = true;
    simd::cvt_u8_to_u32(row, engine.labelMap + y * width, width);
    if (!blank) labeller.addRow<std::uint8_t>(row, static_cast<std::int32_t>(y), engine.szImgX, 1);
  }
  std::vector<lm::SpannedComponent> components = labeller.label(engine.labelMap, 1);
  // A row is known to be blank once both copies of it are: memory may run out before.
  for (const auto& [y, blank] : touched) {
    std::memcpy(engine.labelRows[y], engine.labelMap + y * width, width * sizeof(std::uint32_t));
    holds[y] = !blank;
  }
  return components;
}

std::vector<boxRect> boxesOf(const kAMBLE& engine, const std::vector<lm::SpannedComponent>& components,
                             lm::SmallComponents& small) {
  std::vector<boxRect> boxes;
  for (const lm::SpannedComponent& spanned : components) {
    if (spanned.component.count >= engine.thrCcPxl2) {
      boxes.push_back(lm::boxBetween(spanned.left - 1, spanned.top - 1, spanned.right + 1, spanned.bottom + 1,
                                     engine.szImgX, engine.szImgY));
    } else if (engine.autoSensitivity) {
      small.add(spanned.component.first % engine.szImgX, spanned.top);
    }
  }
  return boxes;
}

}  // namespace

std::vector<boxRect> kAMBLE::genFgObj_ncv(unsigned char* mask) {
  if (mask == nullptr || !isSized(*this)) return {};
  cleanMask(*this, mask);
  if (!makeLabels(*this)) return {};

  lm::SmallComponents small;
  std::vector<boxRect> boxes = boxesOf(*this, labelMask(*this, mask), small);
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
