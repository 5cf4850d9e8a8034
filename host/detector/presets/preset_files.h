// The files host/detector/presets/*.json, compiled in.
#pragma once

#include <vector>

namespace lm::host::detector::presets {

struct PresetFile {
  const char* name;  // without the folder and ".json"
  const char* document;
};

const std::vector<PresetFile>& preset_files();

}  // namespace lm::host::detector::presets
