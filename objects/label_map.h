// The label map of a frame and its row table.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "objects/mask_bits.h"
#include "objects/runs.h"

namespace lm {

// Where labels are written: the map, `width` x `height`, and a copy of every row.
struct LabelPlanes {
  std::uint32_t* map = nullptr;
  std::uint32_t** rows = nullptr;
  std::int32_t width = 0;
  std::int32_t height = 0;

  bool operator==(const LabelPlanes&) const = default;
};

// Labels cleaned masks. Only blocks of 64 pixels that hold anything, or did in the mask before, are written.
// Its storage is kept from one mask to the next.
class LabelMap {
 public:
  // Labels are written to `planes` from now on. `blank`: they hold only 0. Otherwise, unless they are those
  // of the previous mask, they may hold anything.
  void use(const LabelPlanes& planes, bool blank);

  // For planes that were written by other code.
  void forget() { planes_ = {}; }

  // Labels the regions of 1 in a mask and lists them; other pixels keep their values. `uncleaned`: the mask
  // before pixels were cleared; rows that it did not hold are empty.
  const std::vector<SpannedComponent>& label(const std::uint8_t* mask, const MaskBits& uncleaned);

 private:
  void readRow(const std::uint8_t* pixels, std::size_t y);
  void writeRow(const std::uint8_t* pixels, const RunsOfRow& runs);
  std::uint8_t* blocksOf(std::size_t y) { return dueBlocks_.data() + y * words_; }

  LabelPlanes planes_;
  std::size_t words_ = 0;  // blocks in a row
  // For how many masks a block (a row) must still be written: 2 when the mask holds anything there, 1 when
  // only the planes do.
  std::vector<std::uint8_t> dueBlocks_, dueRows_;
  BitRows set_, cleared_;  // a row
  RunLabeller runs_;
};

}  // namespace lm
