// The steps of a frame over a range of pixels [begin, end). The engine's operations run them over the whole
// frame, learnBg_ncv strip by strip, so that a strip's planes are still in the cache when the next step reads
// them. Cutting a frame into ranges changes no bit of the result.
#pragma once

#include <cstddef>
#include <cstdint>

#include "simd/model_kernels.h"

class kAMBLE;

namespace lm {

// Background pixels examined in a frame, and those whose light changed.
struct LightCount {
  std::int64_t examined = 0;
  std::int64_t changed = 0;

  // The share that changed; 0 when none was examined. Both counts stop at 2^24, as 32-bit floats do.
  float ratio() const;
};

// The channel when there is no previous frame.
inline constexpr int noDifference = -1;

// Channel of the next differences; takeChannel advances the counter as well. (difference.cpp)
int comparedChannel(const kAMBLE& engine);
int takeChannel(kAMBLE& engine);

// Makes the planes of the differences that are missing; returns the channel to compare, or noDifference.
// (difference.cpp)
int prepareDifferences(kAMBLE& engine);

// How still foreground is absorbed. (model_classify.cpp)
LifeRule lifeRule(const kAMBLE& engine);

// Whether the planes that classification and update need exist. (model_classify.cpp, model_update.cpp)
bool canClassify(const kAMBLE& engine);
bool canUpdate(const kAMBLE& engine);

// Copies `frame` to curFrame, unless it is null because it is there already; then computes rdDiff, and with
// illumination handling illumDiff, on `channel`. Reads no other pixels. (difference.cpp)
void takeRange(kAMBLE& engine, const std::uint8_t* frame, int channel, std::size_t begin, std::size_t end);

// The two below read the pixels from `frame`: curFrame, or what it was copied from.

// fgMask, minDist, fgLife, absorbMask. Reads no other pixels. (model_classify.cpp)
void classifyRange(kAMBLE& engine, const std::uint8_t* frame, std::size_t begin, std::size_t end);

class NeighbourDistances;

// Samples, bgImg, timers and counters. Reads illumDiff up to two rows away. (model_update.cpp)
void updateRange(kAMBLE& engine, const std::uint8_t* frame, std::size_t begin, std::size_t end,
                 const NeighbourDistances& distances, LightCount& light);

}  // namespace lm
