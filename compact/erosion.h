// Eroding the foreground as rows of bits.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "compact/bit_rows.h"

namespace lm::compact {

class Erosion {
 public:
  // Throws std::bad_alloc.
  void make(std::int32_t width, std::int32_t height);

  // Reads a row of the foreground, from the words of its blocks.
  void read(std::int32_t y, const std::uint32_t* blocks, std::size_t count);

  // Peels `passes` layers off where foreground borders background of the frame; the frame's edge does not
  // erode.
  void peel(int passes);

  bool holds(std::int32_t y) const { return held_[static_cast<std::size_t>(y)] != 0; }
  bool isSet(std::int32_t x, std::int32_t y) const;
  void clear(std::int32_t x, std::int32_t y);
  const std::uint64_t* row(std::int32_t y) const { return set_.row(y); }
  std::size_t words() const { return words_; }

 private:
  void peelRow(std::int32_t y);

  std::int32_t height_ = 0;
  std::size_t words_ = 0;
  std::uint64_t beyond_ = 0;  // bits of the last word outside the frame
  BitRows set_;
  std::vector<std::uint8_t> held_;                     // per row: whether it holds anything
  std::vector<std::uint64_t> above_, current_, full_;  // rows as they were before the pass
};

}  // namespace lm::compact
