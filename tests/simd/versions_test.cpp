// Every version that the library exports has a row in the table, and every row's level is the one its name
// says.
#include "tests/simd/versions.h"

#include <gmock/gmock.h>

#include <fstream>
#include <map>

namespace {

const std::map<std::string, int> levels = {{"c", 0}, {"sse2", 2}, {"ssse3", 4}, {"sse41", 5}, {"avx2", 8}};

std::string suffixOf(const std::string& name) { return name.substr(name.rfind('_') + 1); }

TEST(Versions, TheTableListsEveryExportedVersion) {
  std::ifstream list(EXPORTS_LIST);
  ASSERT_TRUE(list.is_open());
  std::vector<std::string> exported;
  for (std::string line; std::getline(list, line);) {
    const std::string name = line.substr(0, line.find('('));
    if (name.starts_with("simd::") && levels.contains(suffixOf(name))) exported.push_back(name.substr(6));
  }
  EXPECT_THAT(allVersionNames(), ::testing::UnorderedElementsAreArray(exported));
}

TEST(Versions, NamesSayTheLevel) {
  const auto check = [&](const auto& versions) {
    for (const auto& version : versions) {
      EXPECT_EQ(version.level, levels.at(suffixOf(version.name))) << version;
    }
  };
  check(replaceVersions);
  check(genRdDiffVersions);
  check(pruneVersions);
  check(matchVersions);
  check(touchVersions);
}

}  // namespace
