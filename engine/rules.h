// The small pure rules of the engine: wrapping integer arithmetic, conversions that are defined for every
// value, and the rules by which cursors, lives and rates move. Everything is inline, allocates nothing and
// throws nothing.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>

namespace lm {

// ---- arithmetic that wraps
// ---------------------------------------------------------------------------

constexpr std::int32_t wrapAdd(std::int32_t a, std::int32_t b) {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) + static_cast<std::uint32_t>(b));
}
constexpr std::int32_t wrapSub(std::int32_t a, std::int32_t b) {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) - static_cast<std::uint32_t>(b));
}
constexpr std::int32_t wrapMul(std::int32_t a, std::int32_t b) {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) * static_cast<std::uint32_t>(b));
}

constexpr std::int64_t wrapAdd(std::int64_t a, std::int64_t b) {
  return static_cast<std::int64_t>(static_cast<std::uint64_t>(a) + static_cast<std::uint64_t>(b));
}
constexpr std::int64_t wrapSub(std::int64_t a, std::int64_t b) {
  return static_cast<std::int64_t>(static_cast<std::uint64_t>(a) - static_cast<std::uint64_t>(b));
}
constexpr std::int64_t wrapMul(std::int64_t a, std::int64_t b) {
  return static_cast<std::int64_t>(static_cast<std::uint64_t>(a) * static_cast<std::uint64_t>(b));
}

// Bytes of a frame or plane, or nothing for a product that wrapped below zero.
constexpr std::size_t countOf(std::int32_t product) {
  return product > 0 ? static_cast<std::size_t>(product) : 0;
}

// Truncation toward zero; what does not fit (NaN too) gives INT32_MIN, as the processor's own conversion
// does.
constexpr std::int32_t toInt32(double value) {
  constexpr double limit = 2147483648.0;
  const bool fits = value > -limit - 1.0 && value < limit;
  return fits ? static_cast<std::int32_t>(value) : std::numeric_limits<std::int32_t>::min();
}

// ---- samples
// ------------------------------------------------------------------------------------------------

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

// Where a locked segment that starts at `first` moves to: right behind itself, or to the start where `width`
// slots no longer fit.
constexpr LockSegment moveLock(std::int32_t first, std::int32_t width, std::int32_t numSlots) {
  const std::int32_t next = wrapAdd(first, width);
  const bool fits = next < numSlots && wrapAdd(next, width) <= numSlots;
  const std::int32_t start = fits ? next : 0;
  return {start, wrapSub(wrapAdd(start, width), 1)};
}

// ---- life of still foreground
// -------------------------------------------------------------------------------

// Life that a pixel holds once it was absorbed.
constexpr float absorbedLife(std::int32_t lifeStaticFrm) {
  return static_cast<float>(wrapAdd(lifeStaticFrm, 1));
}

// ---- frame rate
// ---------------------------------------------------------------------------------------------

inline constexpr double minRate = 3.0;
inline constexpr double maxRate = 40.0;

constexpr bool isUsualRate(double rate) { return !(rate > maxRate || rate < minRate); }

// Static-object life in frames.
constexpr std::int32_t staticLifeFrames(std::int32_t seconds, double rate) {
  return toInt32(static_cast<double>(seconds) * rate);
}

}  // namespace lm
