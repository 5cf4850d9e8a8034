// Input of the engine and the model: frames with timestamps, a configuration, and changes that the host makes
// in between.
#pragma once

#include <sys/time.h>

#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "engine/kamble.h"
#include "tests/plain/model.h"
#include "tests/system/scene.h"

// One frame from the host. It may have another channel count than the sequence.
struct Frame {
  std::vector<std::uint8_t> pixels;
  int channels = 3;
  std::string timestamp;
};

enum class ConfiguredBy {
  parameters,  // the detector's engine is configured through setParam
  document,    // the detector is configured through the JSON document; entries in the document's order only
};

std::vector<plain::RegionText> wholeFrame();

struct Sequence {
  std::string name;
  int width, height, frames;
  std::function<Frame(int)> frame;        // called for frames 0, 1, 2, ... in this order
  std::vector<std::string> entries = {};  // follow "frmW", "frmH" and "frmChn"
  std::vector<plain::RegionText> include = wholeFrame();
  std::vector<plain::RegionText> exclude = {};
  ConfiguredBy configuredBy = ConfiguredBy::parameters;
  // Changes that the host makes before a frame. The engine is null when the model runs alone.
  std::function<void(int, kAMBLE*, plain::Model&)> before = {};
  // The wall clock during a frame.
  std::function<timeval(int)> clock = {};
};

// Makes the same change to the model and, if present, to the engine: their fields have the same names.
template <class Change>
void toBoth(kAMBLE* engine, plain::Model& model, const Change& change) {
  change(model);
  if (engine != nullptr) change(*engine);
}

// Frames of a scene, `interval` milliseconds apart.
std::function<Frame(int)> framesOf(const scene::Scene& scene, int interval = 40);

inline void append(std::vector<Sequence>& list, std::vector<Sequence> more) {
  for (Sequence& sequence : more) list.push_back(std::move(sequence));
}

// sequences_*.cpp
std::vector<Sequence> sizeSequences();
std::vector<Sequence> settingSequences();
std::vector<Sequence> modelSequences();
std::vector<Sequence> timeSequences();
std::vector<Sequence> regionSequences();
std::vector<Sequence> objectSequences();
std::vector<Sequence> speckleSequences();
std::vector<Sequence> hostSequences();
std::vector<Sequence> mixedSequences();

std::vector<Sequence> allSequences();
