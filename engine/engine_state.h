// What the engine keeps apart from its public fields.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

class kAMBLE;

namespace lm {

// A plane that the engine allocated. One that a caller put in its place is taken to be large enough.
struct Made {
  const void* plane = nullptr;
  std::size_t bytes = 0;

  bool isTooSmall(const void* current, std::size_t needed) const {
    return current != nullptr && current == plane && bytes < needed;
  }
};

struct EngineState {
  Made curFrame, prevFrame, bgImg, roiMask;
  std::int32_t planePixels = 0;            // pixels that the planes were made for; 0 without planes
  std::vector<Made> regionMasks;           // of roiInclude and roiExclude, those that setParam made
  std::vector<std::uint32_t*> labelTable;  // the table that labelRows points to
  std::int32_t labelWidth = 0;             // labels in each of its rows
};

// The engine's own, made on the first call: the constructor of the engine allocates nothing.
EngineState& stateOf(kAMBLE& engine);
// The same, or the initial values where there is none yet.
const EngineState& stateOf(const kAMBLE& engine);

// Whether the model has numPixel pixels. (pipeline.cpp)
bool hasModel(const kAMBLE& engine);

// Whether frmChn is a count that frames may have, and those of curFrame, prevFrame and bgImg that exist hold
// numPixel pixels of so many bytes. (pipeline.cpp)
bool holdsFrames(const kAMBLE& engine);

// Stores the size of a first frame; stores it and writes it to standard error; derives the limits that are in
// pixels. (buffers.cpp)
void storeSize(kAMBLE& engine, std::int32_t width, std::int32_t height);
void takeSize(kAMBLE& engine, std::int32_t width, std::int32_t height);
void deriveLimits(kAMBLE& engine);

// Makes roiMask for `count` pixels if it is missing and records its size. Returns whether there is one.
// (buffers.cpp)
bool makeRoiMask(kAMBLE& engine, std::int32_t count);

// Releases roiMask and the masks of all regions. (buffers.cpp)
void releaseRegionMasks(kAMBLE& engine);

// Releases what initBuffer_ncv would otherwise replace without freeing it. (buffers.cpp)
void releaseModel(kAMBLE& engine);

}  // namespace lm
