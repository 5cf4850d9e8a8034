#include "objects/mask_bits.h"

#include <algorithm>
#include <cassert>

namespace lm {
namespace {

// The pixels of a row that are set and have a cleared one beside, above or below them; whether there are any.
std::uint64_t findBorder(const std::uint64_t* set, const std::uint64_t* cleared, const std::uint64_t* above,
                         const std::uint64_t* below, std::uint64_t* border, std::size_t words) {
  std::uint64_t any = 0;
  for (std::size_t w = 0; w < words; ++w) {
    border[w] = set[w] & (leftOf(cleared + w) | rightOf(cleared + w) | above[w] | below[w]);
    any |= border[w];
  }
  return any;
}

void move(const std::uint64_t* pixels, std::uint64_t* from, std::uint64_t* to, std::size_t words) {
  for (std::size_t w = 0; w < words; ++w) {
    from[w] &= ~pixels[w];
    to[w] |= pixels[w];
  }
}

}  // namespace

std::size_t MaskBits::pixelsInRow(std::size_t y) const { return std::min(width_, pixels_ - y * width_); }

void MaskBits::read(const std::uint8_t* mask, std::size_t width, std::size_t pixels,
                    const MaskValues& values) {
  assert(width > 0);
  values_ = values;
  if (width_ != width || pixels_ != pixels) {
    const std::size_t height = (pixels + width - 1) / width;
    width_ = pixels_ = 0;  // stay 0 if an allocation below throws
    words_ = wordsFor(width);
    held_.assign(height, 0);
    for (BitRows* rows : {&set_, &cleared_, &layer_}) rows->reset(words_, height);
    width_ = width;
    pixels_ = pixels;
  }
  const auto& packRow = *maskKernels().packRow;
  for (std::size_t y = 0; y < held_.size(); ++y) {
    const auto row = static_cast<std::ptrdiff_t>(y);
    held_[y] = packRow(mask + y * width_, pixelsInRow(y), values_, set_.row(row), cleared_.row(row));
  }
}

// Finds the pixels of the next pass; false when there are none.
bool MaskBits::findLayer() {
  std::uint64_t any = 0;
  for (std::size_t y = 0; y < held_.size(); ++y) {
    const auto row = static_cast<std::ptrdiff_t>(y);
    if (held_[y] != 0) {
      any |= findBorder(set_.row(row), cleared_.row(row), cleared_.row(row - 1), cleared_.row(row + 1),
                        layer_.row(row), words_);
    }
  }
  return any != 0;
}

void MaskBits::clearLayer() {
  for (std::size_t y = 0; y < held_.size(); ++y) {
    const auto row = static_cast<std::ptrdiff_t>(y);
    if (held_[y] != 0) move(layer_.row(row), set_.row(row), cleared_.row(row), words_);
  }
}

void MaskBits::list(std::vector<int>& pixels) const {
  for (std::size_t y = 0; y < held_.size(); ++y) {
    if (held_[y] == 0) continue;
    const auto begin = static_cast<int>(y * width_);
    forEachColumn(layer_.row(static_cast<std::ptrdiff_t>(y)), words_,
                  [&](int column) { pixels.push_back(begin + column); });
  }
}

void MaskBits::peel(int passes, std::vector<int>& last) {
  last.clear();
  // If set == cleared nothing changes, and every pass finds what the first one found.
  const bool stays = values_.set == values_.cleared;
  for (int pass = stays ? passes - 1 : 0; pass < passes && findLayer(); ++pass) clearLayer();
  if (passes >= 1) list(last);
}

void MaskBits::write(std::uint8_t* mask) const {
  const auto& unpackRow = *maskKernels().unpackRow;
  for (std::size_t y = 0; y < held_.size(); ++y) {
    if (held_[y] == 0) continue;
    unpackRow(mask + y * width_, pixelsInRow(y), values_, set_.row(static_cast<std::ptrdiff_t>(y)));
  }
}

}  // namespace lm
