// Rules that both engines share, as small pure functions: how cursors, lives and rates move. They allocate
// nothing and throw nothing. How much life a frame gives is in life.h, when the slow refresh is due in
// refresh.h.
#pragma once

#include <algorithm>
#include <cstdint>
#include <limits>

#include "base/integers.h"

namespace lm {

// ---- frames -----------------------------------------------------------------------------------------------

// Whether 32 bits count the bytes of a frame whose rows are filled up to a multiple of 32 pixels.
constexpr bool fitsIndices(std::int32_t width, std::int32_t height, std::int32_t channels) {
  const std::int64_t row = (std::int64_t{width} + 31) / 32 * 32;
  return row * height <= std::numeric_limits<std::int32_t>::max() / channels;
}

// ---- samples ----------------------------------------------------------------------------------------------

// Slot that the sample cursor moves to after writing `slot`.
// Kept: only one slot of the locked segment [lockStart, lockEnd] is stepped over, so every other slot of a
// wider segment is still written.
constexpr std::uint32_t nextSlot(std::uint32_t slot, std::int32_t lockStart, std::int32_t lockEnd,
                                 std::uint32_t numSlots) {
  std::uint32_t next = slot + 1;
  const auto position = static_cast<std::int64_t>(next);
  if (lockStart <= position && position <= lockEnd) next = slot + 2;
  return next >= numSlots ? 0 : next;
}

// Position after `cursor` in a list of `count` entries.
constexpr std::uint32_t nextInRing(std::uint32_t cursor, std::int32_t count) {
  const std::uint32_t next = cursor + 1;
  return next == static_cast<std::uint32_t>(count) ? 0 : next;
}

struct LockSegment {
  std::int32_t first;
  std::int32_t last;
};

// Where a locked segment that starts at `first` moves to: the slots after it, or the start where `width`
// slots no longer fit.
constexpr LockSegment moveLock(std::int32_t first, std::int32_t width, std::int32_t numSlots) {
  const std::int32_t next = wrapAdd(first, width);
  const bool fits = next < numSlots && wrapAdd(next, width) <= numSlots;
  const std::int32_t start = fits ? next : 0;
  return {start, wrapSub(wrapAdd(start, width), 1)};
}

// ---- differences ------------------------------------------------------------------------------------------

// Channel that is compared when the counter is at `turn`. The fourth channel never is: its turn uses channel
// 0 again, as does a counter that a host set below 0.
constexpr std::int32_t comparedChannel(std::int32_t turn) { return turn >= 0 && turn < 3 ? turn : 0; }

// The counter after a comparison of frames of `channels` channels.
constexpr std::int32_t nextChannel(std::int32_t turn, std::int32_t channels) {
  const std::int32_t next = wrapAdd(turn, 1);
  return next < channels ? next : 0;
}

// ---- life of still foreground -----------------------------------------------------------------------------

// Life that a pixel holds once it was absorbed.
constexpr float absorbedLife(std::int32_t lifeStaticFrm) {
  return static_cast<float>(wrapAdd(lifeStaticFrm, 1));
}

// ---- light ------------------------------------------------------------------------------------------------

// Background pixels examined in a frame, and those whose light changed.
struct LightCount {
  std::int64_t examined = 0;
  std::int64_t changed = 0;

  // The share that changed; 0 when none was examined. Both counts stop at 2^24, as 32-bit floats do.
  constexpr float ratio() const {
    constexpr std::int64_t limit = 1 << 24;
    if (examined == 0) return 0.0F;
    return static_cast<float>(std::min(changed, limit)) / static_cast<float>(std::min(examined, limit));
  }
};

// Whether a share of background whose light changed counts as a change of the whole scene.
constexpr bool isGlobalChange(float ratio) { return !(ratio < 0.15F); }

// ---- frame rate -------------------------------------------------------------------------------------------

inline constexpr double minRate = 3.0;
inline constexpr double maxRate = 40.0;

constexpr bool isUsualRate(double rate) { return !(rate > maxRate || rate < minRate); }

// Static-object life in frames.
constexpr std::int32_t staticLifeFrames(std::int32_t seconds, double rate) {
  return toInt32(static_cast<double>(seconds) * rate);
}

}  // namespace lm
