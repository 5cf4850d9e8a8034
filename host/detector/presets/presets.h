// Configuration documents for common places, compiled in from the files beside this one.
#pragma once

#include <string>
#include <vector>

namespace lm::host::detector::presets {

struct Preset {
  std::string name;
  std::string about;     // when to use it, in a line; the document's "comment"
  std::string document;  // as the file has it
};

// In the order in which they are listed.
const std::vector<Preset>& all();

// None of that name: a null pointer.
const Preset* find_preset(const std::string& name);

// For the command line: empty when there is a preset of that name; otherwise a text that names those there
// are.
std::string is_preset(const std::string& name);

}  // namespace lm::host::detector::presets
