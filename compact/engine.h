// The compact engine: what runs behind the entry points. It gives the boxes that kAMBLE gives, byte for byte,
// from a private layout: a third of the memory, and only blocks with work are looked at.
//
// A kAMBLE holds the settings, the clock, the lock and the counters, and is changed as if it had learned the
// frame itself, but for its planes and tables: none of them is made.
#pragma once

#include <cstdint>
#include <vector>

#include "compact/border.h"
#include "compact/erosion.h"
#include "compact/memory.h"
#include "compact/runs.h"
#include "objects/box.h"

class kAMBLE;

namespace lm::compact {

class Engine {
 public:
  // With the kernels for this processor, for `level` (simd/cpu_level.h), or with `kernels`.
  Engine();
  explicit Engine(int level);
  explicit Engine(const Kernels& kernels);

  // Whether this engine can take the place of a configured one that has seen no frame, for frames of this
  // shape. Sizes whose products do not fit 32 bits and settings that no document can make are left to kAMBLE.
  static bool suits(const kAMBLE& settings, const Shape& shape);

  // Learns a frame of `shape`, the same for every frame; see kAMBLE::learnBg_ncv.
  bool learn(kAMBLE& settings, const std::uint8_t* frame, const Shape& shape);

  // The boxes of the last frame that was learned; see kAMBLE::genFgObj_ncv.
  std::vector<boxRect> boxes(kAMBLE& settings);

  // Whether a pixel of the last frame is foreground.
  bool isForeground(std::int32_t x, std::int32_t y) const;

 private:
  bool start(kAMBLE& settings, const std::uint8_t* frame);
  void readRegion(const kAMBLE& settings);
  void seed(const std::uint8_t* frame);
  void learnRows(kAMBLE& settings, const std::uint8_t* frame);

  const Kernels& kernels_;
  Shape shape_;
  bool started_ = false;
  bool classified_ = false;  // a frame after the first
  Memory memory_;
  RecentRows recent_;
  Border border_;
  std::vector<BlockRange> learned_;  // of each row: blocks that touch the regions
  std::vector<BlockRange> taken_;    // of each row: those, and what they may ask about
  std::int64_t regionPixels_ = 0;
  std::vector<bool> regionStart_;  // of the first pixels, for the pruning of the last ones
  Erosion erosion_;
  RunLabeller runs_;
};

}  // namespace lm::compact
