// A byte mask as bits: what erosion works on.
#pragma once

#include <cassert>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "objects/bit_rows.h"

namespace lm {

// Its storage is kept from one mask to the next.
class MaskBits {
 public:
  // Reads a mask of `pixels` bytes in rows of `width`; the last row may be short.
  void read(const std::uint8_t* mask, std::size_t width, std::size_t pixels, const MaskValues& values);

  // Peels `passes` layers off the set regions where they border cleared pixels: each pass clears all set
  // pixels that have a cleared direct neighbour in the frame. `last`: the pixels of the last pass, in index
  // order.
  void peel(int passes, std::vector<int>& last);

  // Writes the set pixels of the mask that was read back: cleared where they were peeled off.
  void write(std::uint8_t* mask) const;

  // Whether row `y` of the mask held anything but cleared pixels.
  bool held(std::size_t y) const {
    assert(y < held_.size());
    return held_[y] != 0;
  }

 private:
  std::size_t pixelsInRow(std::size_t y) const;
  bool findLayer();
  void clearLayer();
  void list(std::vector<int>& pixels) const;

  MaskValues values_{};
  std::size_t width_ = 0;
  std::size_t pixels_ = 0;
  std::size_t words_ = 0;
  std::vector<std::uint8_t> held_;  // one per row
  BitRows set_, cleared_;
  BitRows layer_;  // what a pass clears; rows that were not held are skipped
};

}  // namespace lm
