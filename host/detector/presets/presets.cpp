#include "host/detector/presets/presets.h"

#include <json/json.h>

#include <algorithm>
#include <sstream>

#include "host/detector/presets/preset_files.h"

namespace lm::host::detector::presets {
namespace {

std::string comment_of(const std::string& document) {
  Json::Value root;
  std::istringstream(document) >> root;
  return root["comment"].asString();
}

std::vector<Preset> read_presets() {
  std::vector<Preset> all;
  for (const PresetFile& file : preset_files()) {
    all.push_back({file.name, comment_of(file.document), file.document});
  }
  return all;
}

}  // namespace

const std::vector<Preset>& all() {
  static const std::vector<Preset> all = read_presets();
  return all;
}

const Preset* find_preset(const std::string& name) {
  const auto found = std::ranges::find(all(), name, &Preset::name);
  return found == all().end() ? nullptr : &*found;
}

std::string is_preset(const std::string& name) {
  if (find_preset(name) != nullptr) return "";
  std::string known;
  for (const Preset& preset : all()) known.append(known.empty() ? "" : ", ").append(preset.name);
  return "must be one of " + known + ", not " + name;
}

}  // namespace lm::host::detector::presets
