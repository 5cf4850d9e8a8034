// The files host/presets/*.json, compiled in.
#pragma once

#include <vector>

namespace lm::host {

struct PresetFile {
  const char* name;  // without the folder and ".json"
  const char* document;
};

const std::vector<PresetFile>& preset_files();

}  // namespace lm::host
