#include "compact/erosion.h"

#include <algorithm>

namespace lm::compact {

void Erosion::make(std::int32_t width, std::int32_t height) {
  height_ = height;
  words_ = wordsFor(static_cast<std::size_t>(width));
  const auto inLast = static_cast<std::size_t>(width) - (words_ - 1) * wordPixels;
  beyond_ = inLast == wordPixels ? 0 : ~std::uint64_t{0} << inLast;
  set_.reset(words_, static_cast<std::size_t>(height));
  held_.assign(static_cast<std::size_t>(height), 0);
  above_.assign(words_, 0);
  current_.assign(words_, 0);
  full_.assign(words_, ~std::uint64_t{0});
}

void Erosion::read(std::int32_t y, const std::uint32_t* blocks, std::size_t count) {
  const bool any = std::any_of(blocks, blocks + count, [](std::uint32_t word) { return word != 0; });
  std::uint8_t& held = held_[static_cast<std::size_t>(y)];
  if (!any && held == 0) return;
  std::uint64_t* row = set_.row(y);
  for (std::size_t w = 0; w < words_; ++w) {
    row[w] = blocks[2 * w];
    if (2 * w + 1 < count) row[w] |= std::uint64_t{blocks[2 * w + 1]} << 32;
  }
  held = any ? 1 : 0;
}

// A pixel stays if its four neighbours are set; what is outside the frame counts as set.
void Erosion::peelRow(std::int32_t y) {
  std::uint64_t* row = set_.row(y);
  std::copy_n(row, words_, current_.begin());
  const std::uint64_t* below = y + 1 < height_ ? set_.row(y + 1) : full_.data();
  std::uint64_t left = std::uint64_t{1} << (wordPixels - 1);
  std::uint64_t any = 0;
  for (std::size_t w = 0; w < words_; ++w) {
    const bool last = w + 1 == words_;
    const std::uint64_t here = last ? current_[w] | beyond_ : current_[w];
    const std::uint64_t right = last ? 1 : current_[w + 1];
    row[w] = current_[w] & (here << 1 | left >> (wordPixels - 1)) & (here >> 1 | right << (wordPixels - 1)) &
             above_[w] & below[w];
    left = current_[w];
    any |= row[w];
  }
  held_[static_cast<std::size_t>(y)] = any != 0 ? 1 : 0;
  std::swap(above_, current_);
}

void Erosion::peel(int passes) {
  for (int pass = 0; pass < passes; ++pass) {
    std::fill(above_.begin(), above_.end(), ~std::uint64_t{0});
    for (std::int32_t y = 0; y < height_; ++y) {
      if (holds(y)) {
        peelRow(y);
      } else {
        std::fill(above_.begin(), above_.end(), 0);
      }
    }
  }
}

bool Erosion::isSet(std::int32_t x, std::int32_t y) const {
  const auto column = static_cast<std::size_t>(x);
  return (set_.row(y)[column / wordPixels] >> (column % wordPixels) & 1) != 0;
}

void Erosion::clear(std::int32_t x, std::int32_t y) {
  const auto column = static_cast<std::size_t>(x);
  set_.row(y)[column / wordPixels] &= ~(std::uint64_t{1} << (column % wordPixels));
}

}  // namespace lm::compact
