// The branches of the frame's rules, counted by the model. Comparing the engine with the model only proves
// what the sequences reach, so a test requires each branch to be taken at least once. Names with "At..." are
// boundary values, where `<` and `<=` differ.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <iterator>

// clang-format off
#define PLAIN_BRANCHES(X)                                                                                   \
  /* settings */                                                                                            \
  X(keyUnknown) X(valueRefused) X(valueAccepted) X(valueRepeated) X(levelOutOfRange) X(regionTooFewPoints)  \
  X(regionSubtracted) X(roiMaskShorterThanFrame)                                                            \
  /* time */                                                                                                \
  X(timeNegative) X(rateFirstTimestamp) X(rateNotLater) X(rateTooFast) X(rateTooSlow) X(rateUsable)         \
  X(rateAtFastEnd) X(clockTooFast) X(clockTooSlow) X(clockUsable)                                           \
  /* frame */                                                                                               \
  X(channelsRefused) X(channelsRefusedFirst) X(currentFrameGrows) X(frameSeeds) X(frameClassified)          \
  /* lock */                                                                                                \
  X(lockOff) X(lockNotDue) X(lockMoves) X(lockEndsAtLastSlot) X(lockWrapsAtEnd) X(lockWrapsForRoom)         \
  /* difference */                                                                                          \
  X(differenceOnTurn) X(differenceFourthTurn) X(differenceTurnWraps) X(differenceNoIllumination)            \
  /* classification */                                                                                      \
  X(pixelOutside) X(pixelUnchanged) X(pixelUnchangedAtBound) X(pixelAbsorbed) X(lifeAtBound)                \
  X(matchAtRadius) X(matchJustOutside) X(matchBackground) X(matchForeground) X(matchNone)                   \
  X(matchEndsUnmatched) X(ghostOff) X(lifeFull) X(lifeHalf) X(lifeFifth) X(lifeFullAtBound)                 \
  X(lifeHalfAtBound) X(lifeFifthAtBound) X(lifeForegroundFalls) X(lifeForegroundRests) X(lifePinned)        \
  X(lifeBackgroundFalls) X(lifeBackgroundRests) X(lifeFallsFromOne)                                         \
  /* update */                                                                                              \
  X(absorbedWritten) X(absorbedKeptGhostOff) X(foregroundKeptOut) X(illuminationOff)                        \
  X(illuminationAtBound) X(illuminationSame) X(illuminationSpreads) X(illuminationIsolated)                 \
  X(illuminationGlobal) X(ratioAtBound) X(ratioNothingExamined) X(neighbourCursorWraps) X(updateUnchanged)  \
  X(timerRunning) X(timerEndsAtZero) X(timerBelowZero) X(closeMatch) X(closeMatchAtBound) X(refreshWrites)  \
  X(refreshCounts) X(refreshWraps) X(cursorSteps) X(cursorStepsOver) X(cursorWraps)                         \
  X(cursorStepsOverAndWraps) X(cursorAtLockStart) X(cursorAtLockEnd)                                        \
  /* objects */                                                                                             \
  X(pixelEroded) X(tailPruned) X(tailKept) X(componentLarge) X(componentAtBound) X(componentSmallNoted)     \
  X(componentDropped) X(boxAtLeft) X(boxAtTop) X(boxAtRight) X(boxAtBottom) X(boxInside) X(gapBoth)         \
  X(gapInX) X(gapInY) X(gapDiagonal) X(gapAtBound) X(gapTooWide) X(gapJoins) X(gapSecondPass)               \
  X(sizeTooSmall) X(sizeByWidth) X(sizeByHeight) X(sizeWidthAtBound) X(sizeHeightAtBound) X(overlapJoins)   \
  X(overlapSecondPass) X(overlapAtBound) X(overlapApart)                                                    \
  /* adaptation */                                                                                          \
  X(adaptOff) X(scatteredWide) X(scatteredWideHeld) X(scatteredWideAtBound) X(outlier) X(outlierHeld)       \
  X(outlierAtBound) X(lowered) X(loweredToOne) X(restHeld) X(restFree) X(restoreHeld) X(restoreDoubles)     \
  X(restoreReaches) X(fewSmall) X(smallBesideBoxes)                                                         \
  /* result */                                                                                              \
  X(resultEmpty) X(resultOneBox) X(resultSeveralBoxes) X(numberWhole) X(numberFraction)
// clang-format on

namespace plain {

enum class Branch : std::size_t {
#define PLAIN_ENUMERATOR(name) name,
  PLAIN_BRANCHES(PLAIN_ENUMERATOR)
#undef PLAIN_ENUMERATOR
};

inline constexpr const char* branchNames[] = {
#define PLAIN_NAME(name) #name,
    PLAIN_BRANCHES(PLAIN_NAME)
#undef PLAIN_NAME
};

inline constexpr std::size_t numBranches = std::size(branchNames);
using BranchCounts = std::array<std::uint64_t, numBranches>;

}  // namespace plain
