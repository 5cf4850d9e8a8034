// Labelling the 4-connected regions of a map.
#include <algorithm>

#include "base/integers.h"
#include "engine/kamble.h"
#include "objects/scratch.h"

namespace {

// The pixels of a row that hold `value`, as bits.
void findPixels(const std::uint32_t* row, std::size_t pixels, std::uint32_t value, std::uint64_t* bits) {
  for (std::size_t x = 0; x < pixels; ++x) {
    bits[x / lm::wordPixels] |= std::uint64_t{row[x] == value} << (x % lm::wordPixels);
  }
}

}  // namespace

std::vector<ccObj> kAMBLE::connectedComponent(std::uint32_t* labels, std::uint8_t value) {
  std::vector<ccObj> components;
  const std::int32_t rowPixels = lm::stateOf(*this).nbrWidth;
  if (labels == nullptr || rowPixels < 1 || nbr4Idx.size() != lm::countOf(numPixel)) return components;
  if (labels == labelMap) lm::scratchOf(*this).labels.forget();
  const std::size_t width = lm::countOf(rowPixels);
  const std::size_t count = lm::countOf(numPixel);
  const std::size_t words = lm::wordsFor(width);
  lm::BitRows bits;
  lm::RunLabeller labeller;
  labeller.start(rowPixels, value);
  for (std::size_t begin = 0, y = 0; begin < count; begin += width, ++y) {
    bits.reset(words, 1);
    findPixels(labels + begin, std::min(width, count - begin), value, bits.row(0));
    labeller.addRow(bits.row(0), words, static_cast<std::int32_t>(y));
  }
  for (const lm::SpannedComponent& spanned : labeller.number()) components.push_back(spanned.component);
  for (const lm::RunsOfRow& row : labeller.rows()) {
    labeller.paint(row, labels + static_cast<std::size_t>(row.y) * width);
  }
  return components;
}
