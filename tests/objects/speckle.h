// Pseudo-random masks, the same in every run.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace lm::test {

class Speckle {
 public:
  explicit Speckle(std::uint32_t seed) : state_(seed) {}

  // A mask of `pixels` bytes: about one pixel in `every` is one of `marks`, the others are `ground`.
  std::vector<std::uint8_t> mask(std::size_t pixels, std::uint8_t ground, unsigned every,
                                 const std::vector<std::uint8_t>& marks) {
    std::vector<std::uint8_t> bytes(pixels, ground);
    for (std::uint8_t& byte : bytes) {
      if (next() % every == 0) byte = marks[next() % marks.size()];
    }
    return bytes;
  }

 private:
  std::uint32_t next() {
    state_ = state_ * 1664525U + 1013904223U;
    return state_ >> 8;
  }
  std::uint32_t state_;
};

// Frame widths around multiples of the word size.
inline constexpr int wordWidths[] = {1, 2, 31, 63, 64, 65, 127, 128, 130, 200};

}  // namespace lm::test
