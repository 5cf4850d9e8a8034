// The parameter file: a text file of "key value" lines that tunes an engine directly.
#include <fstream>
#include <locale>
#include <sstream>
#include <string_view>

#include "base/integers.h"
#include "engine/kamble.h"

namespace {

constexpr std::streamsize lineBuffer = 4096;  // with the NUL; a longer line ends the reading

struct FileKey {
  std::string_view name;
  void (*store)(kAMBLE& engine, float value);
};

// Values have no range check.
constexpr FileKey fileKeys[] = {
    {"thrMatch", [](kAMBLE& engine, float value) { engine.thrMatch = lm::toInt32(value); }},
    {"thrHeuris", [](kAMBLE& engine, float value) { engine.thrHeuris = lm::toInt32(value); }},
    {"thrIllum", [](kAMBLE& engine, float value) { engine.thrIllum = lm::toInt32(value); }},
    {"minObjW", [](kAMBLE& engine, float value) { engine.minObjW = value; }},
    {"minObjH", [](kAMBLE& engine, float value) { engine.minObjH = value; }},
    {"thrCcPxl",
     [](kAMBLE& engine, float value) { engine.thrCcPxl = engine.thrCcPxl2 = lm::toInt32(value); }},
    {"thrConnect", [](kAMBLE& engine, float value) { engine.thrConnect = value; }},
};

// A line without a value gives -1; text that is not a number gives 0.
void applyLine(kAMBLE& engine, const char* line) {
  std::istringstream words{std::string(line)};
  words.imbue(std::locale::classic());
  std::string key;
  float value = -1.0F;
  words >> key >> value;
  for (const FileKey& row : fileKeys) {
    if (row.name == key) row.store(engine, value);
  }
}

}  // namespace

void kAMBLE::ParserParams(const char* path) {
  if (path == nullptr) return;
  std::ifstream file(path);
  std::string line(static_cast<std::size_t>(lineBuffer), '\0');
  while (file.getline(line.data(), lineBuffer)) applyLine(*this, line.c_str());
}
