// The table of kernel versions: one array per kernel, one row per version. Dispatch, tests and benchmarks
// read it; tests compare it with the library's exported names and with the object files. Not exported.
#pragma once

#include <cstddef>

#include "simd/simd.h"

namespace lm {

template <class Function>
struct Version {
  const char* name;  // the function's, without namespace
  int level;         // the lowest with the instructions that it uses
  Function* function;
};

namespace level = simd::level;

// In each array the reference version comes first, then rising levels.

inline constexpr Version<simd::ReplaceFn> replaceVersions[] = {
    {"replace_if_u8_c", level::none, simd::replace_if_u8_c},
    {"replace_if_u8_sse2", level::sse2, simd::replace_if_u8_sse2},
    {"replace_if_u8_sse41", level::sse41, simd::replace_if_u8_sse41},
    {"replace_if_u8_avx2", level::avx2, simd::replace_if_u8_avx2},
};
inline constexpr Version<simd::GenRdDiffFn> genRdDiffVersions[] = {
    {"genRdDiff_c", level::none, simd::genRdDiff_c},
    {"genRdDiff_ssse3", level::ssse3, simd::genRdDiff_ssse3},
    {"genRdDiff_sse41", level::sse41, simd::genRdDiff_sse41},
};
inline constexpr Version<simd::PruneFn> pruneVersions[] = {
    {"pruneFgByRoi_c", level::none, simd::pruneFgByRoi_c},
    {"pruneFgByRoi_sse2", level::sse2, simd::pruneFgByRoi_sse2},
    {"pruneFgByRoi_sse41", level::sse41, simd::pruneFgByRoi_sse41},
    {"pruneFgByRoi_avx2", level::avx2, simd::pruneFgByRoi_avx2},
};
inline constexpr Version<simd::MatchFn> matchVersions[] = {
    {"isMatchVal_bgr24_c", level::none, simd::isMatchVal_bgr24_c},
    {"isMatchVal_bgr24_ssse3", level::ssse3, simd::isMatchVal_bgr24_ssse3},
    {"isMatchVal_bgr24_sse41", level::sse41, simd::isMatchVal_bgr24_sse41},
};
inline constexpr Version<simd::TouchFn> touchVersions[] = {
    {"isTouch_c", level::none, simd::isTouch_c},
    {"isTouch_sse2", level::sse2, simd::isTouch_sse2},
};
inline constexpr Version<simd::WidenFn> widenVersions[] = {
    {"cvt_u8_to_u32", level::none, simd::cvt_u8_to_u32},
};

// ---- queries ----------------------------------------------------------------------------------------------

// Calls visit(kernel, versions) for every kernel.
template <class Visit>
void forEachKernel(Visit visit) {
  visit("replace_if_u8", replaceVersions);
  visit("genRdDiff", genRdDiffVersions);
  visit("pruneFgByRoi", pruneVersions);
  visit("isMatchVal_bgr24", matchVersions);
  visit("isTouch", touchVersions);
  visit("cvt_u8_to_u32", widenVersions);
}

// The last version that a processor of `level` can run.
template <class Function, std::size_t count>
constexpr const Version<Function>& versionFor(int level, const Version<Function> (&versions)[count]) {
  const Version<Function>* chosen = versions;
  for (const Version<Function>& version : versions) {
    if (version.level <= level) chosen = &version;
  }
  return *chosen;
}

// Pixels of a block that the region pruning of a processor of `level` leaves as they are.
constexpr int pruneBlock(int level) { return level >= simd::level::avx2 ? 32 : 16; }

// The name of the version that `function` is; "?" if it is none of them.
template <class Function, std::size_t count>
constexpr const char* nameOf(Function* function, const Version<Function> (&versions)[count]) {
  for (const Version<Function>& version : versions) {
    if (version.function == function) return version.name;
  }
  return "?";
}

}  // namespace lm
