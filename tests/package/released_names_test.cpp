// Compares the library's exports with those of its releases: packaging/symbols lists every name with the
// version that introduced it.
#include <cxxabi.h>
#include <gmock/gmock.h>

#include <cstdlib>
#include <map>
#include <memory>

#include "tests/package/shell.h"

namespace {

std::string readable(const std::string& name) {
  const std::unique_ptr<char, decltype(&std::free)> text(
      abi::__cxa_demangle(name.c_str(), nullptr, nullptr, nullptr), std::free);
  return text ? text.get() : name;
}

// Name and version from lines such as " getRes@Base 1.0.0", of which those with a tag such as
// "(arch-bits=64)" are for some architectures only; other lines concern the library as a whole.
std::map<std::string, std::string> listed() {
  std::map<std::string, std::string> versions;
  for (const auto& line : entriesOf(SYMBOLS_FILE)) {
    const auto at = line.find("@Base ");
    if (line[0] != ' ' || at == std::string::npos) continue;
    const std::string tag = line[1] == '(' ? line.substr(1, line.find(')')) : "";
    if (tag.empty() || tag == "(arch-bits=" + std::to_string(8 * sizeof(void*)) + ")") {
      versions[line.substr(1 + tag.size(), at - 1 - tag.size())] = line.substr(at + 6);
    }
  }
  return versions;
}

std::vector<std::string> exported() {
  constexpr std::size_t nameColumn = 19;  // after a 16-digit address and a type
  std::vector<std::string> names;
  for (const auto& line : linesOf(NM " -D --defined-only " LIBRARY_FILE)) {
    names.push_back(line.substr(nameColumn));
  }
  return names;
}

TEST(ReleasedNames, AllAreStillExported) {
  const auto names = exported();
  for (const auto& [name, version] : listed()) {
    EXPECT_THAT(names, ::testing::Contains(name)) << "gone since " << version << ": " << readable(name)
                                                  << "\nHosts that use it no longer start: this takes a new "
                                                     "major version (docs/compatibility.md).";
  }
}

TEST(ReleasedNames, NewOnesAreListedWithTheirVersion) {
  const auto versions = listed();
  for (const auto& name : exported()) {
    EXPECT_TRUE(versions.contains(name))
        << "new: " << readable(name) << "\nAdd to packaging/symbols:\n " << name << "@Base " PROJECT_VERSION;
  }
}

}  // namespace
