// Configurations, compiled in from the JSON files in this folder.
#pragma once

#include <string>
#include <vector>

namespace lm::host::detector::presets {

struct Preset {
  std::string name;
  std::string about;     // when to use it, in one line: the document's "comment"
  std::string document;  // the file's text
};

// In the order of the listing.
const std::vector<Preset>& all();

// Null if there is no preset of that name.
const Preset* find_preset(const std::string& name);

// For the command line: empty if there is a preset of that name; otherwise a message that lists the available
// ones.
std::string is_preset(const std::string& name);

}  // namespace lm::host::detector::presets
