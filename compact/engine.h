// The compact engine: what runs behind the entry points and the handles. It gives the boxes that kAMBLE
// gives, byte for byte, from a private layout: a third of the memory, and only blocks with work are looked
// at.
//
// A kAMBLE holds the settings, the clock, the lock and the counters, and is changed as if it had learned the
// frame itself, but for its planes and tables: none of them is made.
#pragma once

#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

#include "compact/border.h"
#include "compact/erosion.h"
#include "compact/memory.h"
#include "compact/pace.h"
#include "compact/runs.h"
#include "compact/watched.h"
#include "objects/box.h"
#include "objects/extent.h"
#include "objects/small_components.h"

class kAMBLE;

namespace lm::compact {

// What an engine uses beside its input.
enum class Scope {
  process,   // as kAMBLE does: rand(), the exported bands of life, a line on standard error
  detector,  // nothing: numbers as from rand() in a fresh process, and the initial bands
};

// What kAMBLE has no setting for; may change between frames.
struct Extras {
  int peeled = 3;  // layers
  Extent extent = Extent::core;
  double absorbSeconds = 0;         // life of still foreground; 0 stands for that of the settings
  std::optional<double> joinGap{};  // largest gap between boxes that are joined, of the longer side
};

// A rectangle of a frame.
struct Area {
  std::int32_t x, y, width, height;
};

class Engine {
 public:
  // With the kernels for this processor, for `level` (simd/cpu_level.h), or with `kernels`. `redFirst`: the
  // channels of a pixel come in reverse order.
  Engine();
  explicit Engine(int level, Scope scope = Scope::process, bool redFirst = false);
  explicit Engine(const Kernels& kernels, Scope scope = Scope::process, bool redFirst = false);

  // Whether this engine can take the place of a configured one that has seen no frame, for frames of this
  // shape. Sizes whose products do not fit 32 bits and settings that no document can make are left to kAMBLE.
  static bool suits(const kAMBLE& settings, const Shape& shape);
  static bool suitsSize(const Shape& shape);

  // Learns a frame of `shape`, the same for every frame; see kAMBLE::learnBg_ncv. `stride`: bytes from row to
  // row, 0 without padding.
  bool learn(kAMBLE& settings, const std::uint8_t* frame, const Shape& shape, std::size_t stride = 0);

  // The boxes of the last frame that was learned; see kAMBLE::genFgObj_ncv.
  std::vector<boxRect> boxes(kAMBLE& settings);

  void setExtras(const Extras& extras) { extras_ = extras; }

  // From the next frame on other pixels are watched (seeding.cpp); after the first frame. Those that were not
  // before are learned from that frame as from a first one. `mask`: as for watchedBy.
  void watch(Watched watched);

  // Pixels of `area` that are learned from the next frame as from a first one, as far as they are watched:
  // those where `mask` is not 0, all if it is null. After the first frame. Adds to what was asked before.
  void relearn(const Area& area, const std::uint8_t* mask, std::size_t stride);

  bool isForeground(std::int32_t x, std::int32_t y) const;  // a pixel of the last frame, from the second on

  // Pictures of what was learned in `area`, after the first frame (pictures.cpp). `stride`: bytes from row to
  // row.
  void copyForeground(const Area& area, std::uint8_t* mask, std::size_t stride) const;
  void copyBackground(const Area& area, std::uint8_t* pixels, std::size_t stride) const;
  // The words of a row's blocks; null for a first frame.
  const std::uint32_t* foreground(std::int32_t y) const {
    return classified_ ? memory_.foreground(y) : nullptr;
  }

  bool started() const { return started_; }
  std::size_t bytes() const { return memory_.bytes() + border_.bytes(); }

 private:
  bool start(kAMBLE& settings, const std::uint8_t* frame);
  void seed(const std::uint8_t* frame);
  void beginWatching(const std::uint8_t* frame);
  void finishWatching();
  void learnRows(kAMBLE& settings, const std::uint8_t* frame);
  const std::vector<SpannedComponent>& label(RunLabeller& runs) const;
  void peel();
  std::size_t wholeOf(const SpannedComponent& core) const;
  std::vector<boxRect> componentBoxes(kAMBLE& settings, SmallComponents& small);
  std::vector<boxRect> objectBoxes(const kAMBLE& settings, SmallComponents& small);
  LifeRule lifeRule(const kAMBLE& settings) const;
  LearnRule learnRule(const kAMBLE& settings) const;
  void keepPace(const kAMBLE& settings, std::int64_t before);

  std::int32_t ordered(std::int32_t channel) const { return redFirst_ ? 2 - channel : channel; }
  const std::uint8_t* rowOf(const std::uint8_t* frame, std::int32_t y) const {
    return frame + static_cast<std::size_t>(y) * stride_;
  }
  std::size_t pixelsFrom(std::int32_t y) const;  // to the end of the frame, padding counted as pixels

  void makeSplitRows();
  template <typename SeedRow>
  void forEachSplitRow(const std::uint8_t* frame, const SeedRow& seedRow);
  void seedBlock(const RowPlanes& row, const std::uint8_t* const (*rows)[maxChannels], std::size_t block,
                 std::uint32_t added) const;
  void seedBorder(const std::uint8_t* frame, std::int32_t y, const std::uint32_t* wanted) const;

  const Kernels& kernels_;
  Scope scope_;
  bool redFirst_;
  Shape shape_;
  std::size_t stride_ = 0;
  Extras extras_;
  Pace pace_;
  bool started_ = false;
  bool classified_ = false;  // a frame after the first
  Memory memory_;
  RecentRows recent_;
  Border border_;
  Watched watched_;  // without bits: they are in the memory
  std::optional<Watched> next_;
  std::vector<std::uint32_t> forgotten_;  // bits that are learned anew from the next frame
  std::vector<std::uint8_t> splitRows_;   // only while a frame seeds
  std::vector<std::uint32_t> added_;  // bits that are watched from the next frame on, which was their first
  Erosion erosion_;
  RunLabeller runs_, wholeRuns_;
};

}  // namespace lm::compact
