// The steps of a frame over a range of pixels [begin, end): what the engine's operations do over the whole
// frame, and learnBg_ncv strip by strip, so that a strip's planes are still in the cache when the next step
// reads them. Cutting a frame into ranges changes no bit of the result.
#pragma once

#include <cstddef>
#include <cstdint>

class kAMBLE;

namespace lm {

// Background pixels seen in a frame, and those whose light changed.
struct LightCount {
  std::int64_t examined = 0;
  std::int64_t changed = 0;

  // The share that changed; 0 when none was seen. The counts are those of 32-bit floats, which stop at 2^24.
  float ratio() const;
};

// The channel when there is no frame before to differ from.
inline constexpr int noDifference = -1;

// Makes the planes of the differences that are missing; returns the channel to compare, or noDifference.
// (difference.cpp)
int prepareDifferences(kAMBLE& engine);

// Whether the planes that classification and update need exist. (model_classify.cpp, model_update.cpp)
bool canClassify(const kAMBLE& engine);
bool canUpdate(const kAMBLE& engine);

// Takes `frame` into curFrame, unless it is null because it is there already; then rdDiff, and illumDiff
// where illumination handling is on, on `channel`. Reads no other pixels. (difference.cpp)
void takeRange(kAMBLE& engine, const std::uint8_t* frame, int channel, std::size_t begin, std::size_t end);

// The two below read the frame's pixels from `frame`: curFrame, or where it was taken from.

// fgMask, minDist, fgLife, absorbMask. Reads no other pixels. (model_classify.cpp)
void classifyRange(kAMBLE& engine, const std::uint8_t* frame, std::size_t begin, std::size_t end);

class NeighbourDistances;

// Samples, bgImg, timers and counters. Reads illumDiff up to two rows away. (model_update.cpp)
void updateRange(kAMBLE& engine, const std::uint8_t* frame, std::size_t begin, std::size_t end,
                 const NeighbourDistances& distances, LightCount& light);

}  // namespace lm
