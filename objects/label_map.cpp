#include "objects/label_map.h"

#include <algorithm>
#include <cassert>
#include <cstring>

#include "simd/simd.h"

namespace lm {
namespace {

// Calls `act` with the first pixel and the number of pixels of every stretch of blocks that are due in a row
// of `width` pixels.
template <typename Act>
void forEachStretch(const std::uint8_t* due, std::size_t blocks, std::size_t width, Act act) {
  for (std::size_t begin = 0; begin < blocks; ++begin) {
    if (due[begin] == 0) continue;
    std::size_t end = begin + 1;
    while (end < blocks && due[end] != 0) ++end;
    act(begin * wordPixels, std::min(end * wordPixels, width) - begin * wordPixels);
    begin = end;
  }
}

}  // namespace

void LabelMap::use(const LabelPlanes& planes, bool blank) {
  if (!blank && planes == planes_) return;
  forget();  // stay unset if an allocation below throws
  const auto height = static_cast<std::size_t>(planes.height);
  words_ = wordsFor(static_cast<std::size_t>(planes.width));
  const std::uint8_t due = blank ? 0 : 1;
  dueBlocks_.assign(words_ * height, due);
  dueRows_.assign(height, due);
  for (BitRows* row : {&set_, &cleared_}) row->reset(words_, 1);
  planes_ = planes;
}

void LabelMap::readRow(const std::uint8_t* pixels, std::size_t y) {
  const auto width = static_cast<std::size_t>(planes_.width);
  maskKernels().packRow(pixels, width, {.set = 1, .relabel = 1, .cleared = 0}, set_.row(0), cleared_.row(0));
  std::uint8_t* const due = blocksOf(y);
  for (std::size_t w = 0; w < words_; ++w) {
    const std::size_t inBlock = std::min(wordPixels, width - w * wordPixels);
    const std::uint64_t blank = ~std::uint64_t{0} >> (wordPixels - inBlock);
    if (cleared_.row(0)[w] != blank) due[w] = 2;
  }
  runs_.addRow(set_.row(0), words_, static_cast<std::int32_t>(y));
}

void LabelMap::writeRow(const std::uint8_t* pixels, const RunsOfRow& runs) {
  const auto width = static_cast<std::size_t>(planes_.width);
  const auto y = static_cast<std::size_t>(runs.y);
  std::uint32_t* const labels = planes_.map + y * width;
  std::uint32_t* const copy = planes_.rows[y];
  std::uint8_t* const due = blocksOf(y);
  // The map and its copy while the row is in the cache.
  forEachStretch(due, words_, width, [&](std::size_t begin, std::size_t count) {
    simd::cvt_u8_to_u32(pixels + begin, labels + begin, count);
  });
  runs_.paint(runs, labels);
  forEachStretch(due, words_, width, [&](std::size_t begin, std::size_t count) {
    std::memcpy(copy + begin, labels + begin, count * sizeof(std::uint32_t));
  });
  for (std::size_t w = 0; w < words_; ++w) due[w] /= 2;
  dueRows_[y] /= 2;
}

const std::vector<SpannedComponent>& LabelMap::label(const std::uint8_t* mask, const MaskBits& uncleaned) {
  assert(planes_.map != nullptr && planes_.rows != nullptr);
  const auto width = static_cast<std::size_t>(planes_.width);
  runs_.start(planes_.width, 1);
  for (std::size_t y = 0; y < dueRows_.size(); ++y) {
    if (uncleaned.held(y)) dueRows_[y] = 2;
    if (dueRows_[y] != 0) readRow(mask + y * width, y);
  }
  const std::vector<SpannedComponent>& components = runs_.number();
  for (const RunsOfRow& row : runs_.rows()) writeRow(mask + static_cast<std::size_t>(row.y) * width, row);
  return components;
}

}  // namespace lm
