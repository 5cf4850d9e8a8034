// A plane of bits in rows of 64-bit words: 64 pixels are processed at a time.
#pragma once

#include <bit>
#include <cassert>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace lm::compact {

inline constexpr std::size_t wordPixels = 64;

constexpr std::size_t wordsFor(std::size_t pixels) { return (pixels + wordPixels - 1) / wordPixels; }

// Every row has a blank word before and after it, and there is a blank row above the first and one below the
// last: the neighbours of pixels at the frame's edge read as 0.
class BitRows {
 public:
  // Makes room for `height` rows of `words` words, all 0.
  void reset(std::size_t words, std::size_t height) {
    stride_ = words + 1;
    bits_.assign(1 + (height + 2) * stride_, 0);
  }

  // Row `y`, from -1 to the height.
  std::uint64_t* row(std::ptrdiff_t y) { return bits_.data() + offset(y); }
  const std::uint64_t* row(std::ptrdiff_t y) const { return bits_.data() + offset(y); }

 private:
  std::size_t offset(std::ptrdiff_t y) const {
    const std::size_t begin = 1 + static_cast<std::size_t>(y + 1) * stride_;
    assert(y >= -1 && begin + stride_ <= bits_.size());
    return begin;
  }

  std::size_t stride_ = 0;
  std::vector<std::uint64_t> bits_;
};

// The bit of the pixel to the left (right) of every pixel of a word. The words beside it are read as well.
inline std::uint64_t leftOf(const std::uint64_t* word) { return word[0] << 1 | word[-1] >> (wordPixels - 1); }
inline std::uint64_t rightOf(const std::uint64_t* word) { return word[0] >> 1 | word[1] << (wordPixels - 1); }

// Calls `act` with the column of every 1 among `words` words, from left to right.
template <typename Act>
void forEachColumn(const std::uint64_t* row, std::size_t words, Act act) {
  for (std::size_t w = 0; w < words; ++w) {
    for (std::uint64_t bits = row[w]; bits != 0; bits &= bits - 1) {
      act(static_cast<std::int32_t>(w * wordPixels) + std::countr_zero(bits));
    }
  }
}

}  // namespace lm::compact
