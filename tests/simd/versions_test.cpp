// The table of kernel versions agrees with itself and with the library's exported names.
#include "tests/simd/versions.h"

#include <gmock/gmock.h>

#include <fstream>
#include <map>
#include <set>

namespace {

const std::map<std::string, int> levels = {{"c", 0}, {"sse2", 2}, {"ssse3", 4}, {"sse41", 5}, {"avx2", 8}};

std::string suffixOf(const std::string& name) { return name.substr(name.rfind('_') + 1); }

// What the library exports from namespace simd: versions, entry points, dispatchers.
std::set<std::string> exportedKernelNames() {
  std::ifstream list(EXPORTS_LIST);
  EXPECT_TRUE(list.is_open());
  std::set<std::string> names;
  for (std::string line; std::getline(list, line);) {
    const std::string name = line.substr(0, line.find('('));
    if (name.starts_with("simd::")) names.insert(name.substr(6));
  }
  return names;
}

// The list is a frozen interface, so it is not generated from the table.
TEST(Versions, TheExportedNamesAreTheTablesVersionsTheEntryPointsAndTheDispatchers) {
  std::set<std::string> names = {"isMatchVal_bgr32",
                                 "detail::replace_if_u8_dispatch",
                                 "detail::gen_rd_diff_dispatch",
                                 "detail::prune_fg_by_roi_dispatch",
                                 "detail::is_match_val_bgr24_dispatch",
                                 "detail::is_touch_dispatch"};
  lm::forEachKernel([&](const std::string& kernel, const auto& versions) {
    names.insert(kernel);
    for (const auto& version : versions) names.insert(version.name);
  });
  EXPECT_EQ(exportedKernelNames(), names);
}

TEST(Versions, NamesStateTheKernelAndTheLevel) {
  lm::forEachKernel([](const std::string& kernel, const auto& versions) {
    if (std::size(versions) == 1 && versions[0].name == kernel) return;  // one version for all levels
    for (const auto& version : versions) {
      const std::string suffix = suffixOf(version.name);
      EXPECT_EQ(version.name, kernel + "_" + suffix);
      EXPECT_EQ(version.level, levels.at(suffix)) << version;
    }
  });
}

TEST(Versions, RowsBeginWithTheReferenceAndRiseInLevel) {
  lm::forEachKernel([](const std::string& kernel, const auto& versions) {
    EXPECT_EQ(versions[0].level, 0) << kernel;
    for (std::size_t i = 1; i < std::size(versions); ++i) {
      EXPECT_GT(versions[i].level, versions[i - 1].level) << versions[i];
      EXPECT_NE(versions[i].function, versions[i - 1].function) << versions[i];
    }
  });
}

}  // namespace
