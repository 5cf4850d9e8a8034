// What the library's file contains: the names it exports, the libraries it needs, its kernel versions.
#include <gmock/gmock.h>

#include <algorithm>
#include <iterator>
#include <set>

#include "simd/versions.h"
#include "tests/package/shell.h"

namespace {

using ::testing::Contains;
using ::testing::ContainsRegex;
using ::testing::HasSubstr;
using ::testing::IsSupersetOf;

struct Symbol {
  char type;  // as nm writes it
  std::string name;
};

std::vector<Symbol> symbolsOf(const std::string& nmArguments) {
  constexpr std::size_t typeColumn = 17;  // after a 16-digit address
  std::vector<Symbol> symbols;
  for (const auto& line : linesOf(std::string(NM) + " -C --defined-only " + nmArguments)) {
    if (line.size() < typeColumn + 2 || line[typeColumn - 1] != ' ') continue;  // an object's name
    symbols.push_back({line[typeColumn], line.substr(typeColumn + 2)});
  }
  return symbols;
}

std::set<std::string> missingFrom(const std::set<std::string>& set, const std::set<std::string>& wanted) {
  std::set<std::string> missing;
  std::set_difference(wanted.begin(), wanted.end(), set.begin(), set.end(),
                      std::inserter(missing, missing.begin()));
  return missing;
}

TEST(LibraryFile, ExportsExactlyTheListedNames) {
  std::set<std::string> exported;
  for (const auto& symbol : symbolsOf("-D " LIBRARY_FILE)) exported.insert(symbol.name);
  const auto list = entriesOf(EXPORTS_LIST);
  const std::set<std::string> listed(list.begin(), list.end());
  EXPECT_EQ(missingFrom(exported, listed), std::set<std::string>()) << "listed, but not exported";
  EXPECT_EQ(missingFrom(listed, exported), std::set<std::string>()) << "exported, but not listed";
}

TEST(LibraryFile, ExportsFunctionsAndWritableVariablesOnly) {
  for (const auto& symbol : symbolsOf("-D " LIBRARY_FILE)) {
    const bool isVariable = symbol.name.starts_with("THRESH_") || symbol.name == "g_seed";
    EXPECT_THAT(isVariable ? "DB" : "T", HasSubstr(std::string(1, symbol.type))) << symbol.name;
  }
}

TEST(LibraryFile, HasItsNameAndDependencies) {
  const auto dynamic = linesOf(std::string(READELF) + " -dW " LIBRARY_FILE);
  EXPECT_THAT(dynamic, Contains(HasSubstr("Library soname: [liblightmotion.so.1]")));
  EXPECT_THAT(dynamic, Contains(ContainsRegex("NEEDED.*\\[libjsoncpp\\.so\\.[0-9]+\\]")));
  EXPECT_THAT(dynamic, Not(Contains(ContainsRegex("RPATH|RUNPATH"))));
}

TEST(LibraryFile, TheHostsLogIsAWeakReference) {
  EXPECT_THAT(linesOf(std::string(NM) + " -D --undefined-only " LIBRARY_FILE),
              Contains(ContainsRegex("w log_File_Debug_s$")));
}

// The host below really has its own copies of the variables, to which the library's references must be bound.
TEST(LibraryFile, AHostThatIsLinkedAgainstItHasItsOwnCopiesOfTheVariables) {
  const auto relocations = linesOf(std::string(READELF) + " -rW " VARIABLE_HOST);
  EXPECT_THAT(relocations, IsSupersetOf({ContainsRegex("R_X86_64_COPY.*THRESH_SAME_PIXEL_x2"),
                                         ContainsRegex("R_X86_64_COPY.*THRESH_SAME_PIXEL_x3")}));
}

// A weak function in such an object could replace the base level's copy in the whole library.
TEST(LeveledObjects, DefineExactlyTheTablesVersionsAboveTheBaseLevel) {
  std::set<std::string> versions;
  lm::forEachKernel([&](const char*, const auto& rows) {
    for (const auto& row : rows) {
      if (row.level > simd::level::sse2) versions.insert(std::string("simd::") + row.name);
    }
  });
  for (const char* level : {"sse41", "avx2"}) {
    for (const char* kernel : {"takeRow", "learnRow", "splitRow", "seedRow"}) {
      versions.insert(std::string("lm::compact::") + level + "::" + kernel);
    }
  }
  std::set<std::string> defined;
  for (const auto& symbol : symbolsOf("--extern-only " LEVELED_OBJECTS)) {
    if (symbol.name.starts_with("DW.ref.")) continue;  // data that unoptimised code refers to for exceptions
    EXPECT_EQ(symbol.type, 'T') << symbol.name;
    defined.insert(symbol.name.substr(0, symbol.name.find('(')));
  }
  EXPECT_EQ(defined, versions);
}

}  // namespace
