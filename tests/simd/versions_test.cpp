// Every version that the library exports has a row in the table, and every row's level is the one its name
// says.
#include "tests/simd/versions.h"

#include <gmock/gmock.h>

#include <fstream>
#include <map>
#include <regex>

namespace {

TEST(Versions, TheTableListsEveryExportedVersion) {
  std::ifstream list(EXPORTS_LIST);
  ASSERT_TRUE(list.is_open());
  std::vector<std::string> exported;
  for (std::string line; std::getline(list, line);) {
    std::smatch parts;
    if (std::regex_search(line, parts, std::regex("^simd::(\\w+_(c|sse2|ssse3|sse41|avx2))\\("))) {
      exported.push_back(parts.str(1));
    }
  }
  EXPECT_THAT(allVersionNames(), ::testing::UnorderedElementsAreArray(exported));
}

TEST(Versions, NamesSayTheLevel) {
  const std::map<std::string, int> levels = {{"c", 0}, {"sse2", 2}, {"ssse3", 4}, {"sse41", 5}, {"avx2", 8}};
  const auto check = [&](const auto& versions) {
    for (const auto& version : versions) {
      const std::string name = version.name;
      EXPECT_EQ(version.level, levels.at(name.substr(name.rfind('_') + 1))) << name;
    }
  };
  check(replaceVersions);
  check(genRdDiffVersions);
  check(pruneVersions);
  check(matchVersions);
  check(touchVersions);
}

}  // namespace
