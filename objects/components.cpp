// Labelling the 4-connected regions of a map.
#include "engine/kamble.h"
#include "objects/component.h"
#include "objects/runs.h"

std::vector<ccObj> kAMBLE::connectedComponent(std::uint32_t* labels, std::uint8_t value) {
  std::vector<ccObj> components;
  if (labels == nullptr || szImgX < 1) return components;
  lm::RunLabeller labeller(szImgX);
  for (std::int32_t y = 0, begin = 0; begin < numPixel; ++y, begin += szImgX) {
    const std::int32_t pixels = std::min(szImgX, numPixel - begin);
    labeller.addRow<std::uint32_t>(labels + begin, y, pixels, value);
  }
  for (const lm::SpannedComponent& spanned : labeller.label(labels, value)) {
    components.push_back(spanned.component);
  }
  return components;
}
