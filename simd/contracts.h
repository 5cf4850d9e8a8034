// What each internal kernel requires of its arguments beyond valid pointers. Every version asserts it in
// debug builds. Plain expressions, always inlined: sources of a higher level include this header.
#pragma once

#include "simd/mask_kernels.h"
#include "simd/model_kernels.h"

namespace lm {

[[gnu::always_inline]] static inline bool areChannels(std::int32_t channels) {
  return channels == 1 || channels == 3 || channels == 4;
}

// Bit k is set if pixel begin + k is below `end`.
[[gnu::always_inline]] static inline std::uint32_t bitsOfBlock(std::size_t begin, std::size_t end) {
  if (begin >= end) return 0;
  return end - begin >= blockPixels ? ~0U : (1U << (end - begin)) - 1;
}

[[gnu::always_inline]] static inline bool canTakeFrame(const FramePlanes& planes, std::size_t begin,
                                                       std::size_t end) {
  const bool differs = planes.rdDiff != nullptr || planes.illumDiff != nullptr;
  return begin <= end && areChannels(planes.channels) &&
         (!differs || (planes.channel >= 0 && planes.channel <= 2)) &&
         (planes.rdDiff == nullptr || planes.prevFrame != nullptr) &&
         (planes.illumDiff == nullptr || planes.bgImg != nullptr) &&
         (!planes.keep || planes.prevFrame != nullptr);
}

[[gnu::always_inline]] static inline bool canFindBusy(const BusyBlock* found, std::size_t room) {
  return found != nullptr && room >= 1;
}

[[gnu::always_inline]] static inline bool canSettleBlock(const ClassifyPlanes& planes, std::size_t begin,
                                                         std::size_t end, const BusyPixels& busy,
                                                         std::uint32_t matched) {
  const std::uint32_t all = busy.outside | busy.unchanged | busy.absorbed | busy.compared;
  const std::uint32_t twice = (busy.outside & busy.unchanged) |
                              ((busy.outside | busy.unchanged) & busy.absorbed) |
                              ((busy.outside | busy.unchanged | busy.absorbed) & busy.compared);
  return twice == 0 && (all & ~bitsOfBlock(begin, end)) == 0 && (matched & ~busy.compared) == 0 &&
         (planes.accountLife || (busy.unchanged | busy.absorbed) == 0);
}

[[gnu::always_inline]] static inline bool canMatchBlock(const MatchRule& rule, std::uint32_t wanted,
                                                        const std::uint32_t* minDist) {
  return areChannels(rule.channels) && (wanted == 0 || minDist != nullptr);
}

[[gnu::always_inline]] static inline bool canFindUpdateWork(const UpdatePlanes& planes,
                                                            const UpdateBlock* found, std::size_t room) {
  return found != nullptr && room >= 1 && (!planes.watchLight || planes.illumDiff != nullptr) &&
         (!planes.absorbing || planes.absorbMask != nullptr);
}

[[gnu::always_inline]] static inline bool canPackRow(std::size_t pixels, const std::uint64_t* set,
                                                     const std::uint64_t* cleared) {
  return pixels == 0 || (set != nullptr && cleared != nullptr && set != cleared);
}

[[gnu::always_inline]] static inline bool canUnpackRow(std::size_t pixels, const std::uint64_t* kept) {
  return pixels == 0 || kept != nullptr;
}

}  // namespace lm
