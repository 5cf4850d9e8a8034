// The one list of kernel versions: whatever has a row here is tested, and every exported version has a row.
#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "simd/simd.h"

template <class Function>
struct Version {
  const char* name;    // as exported, in namespace simd
  int level;           // the lowest that has its instructions
  Function* function;  // takes arrays of any alignment
  Function* expected;  // tests/simd/expected.h
  int block;           // elements worked on at once

  bool isRunnable() const { return level <= GetCpuInstructionSet(); }
};

template <class Function>
std::ostream& operator<<(std::ostream& stream, const Version<Function>& version) {
  return stream << version.name;
}

extern const std::vector<Version<simd::ReplaceFn>> replaceVersions;
extern const std::vector<Version<simd::GenRdDiffFn>> genRdDiffVersions;
extern const std::vector<Version<simd::PruneFn>> pruneVersions;
extern const std::vector<Version<simd::MatchFn>> matchVersions;
extern const std::vector<Version<simd::TouchFn>> touchVersions;

std::vector<std::string> allVersionNames();

// The name of the version that `function` is; "?" for none of them.
template <class Function>
std::string nameOf(Function* function, const std::vector<Version<Function>>& versions) {
  for (const auto& version : versions) {
    if (version.function == function) return version.name;
  }
  return "?";
}
