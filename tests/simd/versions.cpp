#include "tests/simd/versions.h"

#include "tests/simd/expected.h"

const std::vector<Version<simd::ReplaceFn>> replaceVersions = {
    {"replace_if_u8_c", 0, simd::replace_if_u8_c, expected::replace, 1},
    {"replace_if_u8_sse2", 2, simd::replace_if_u8_sse2, expected::replace, 16},
    {"replace_if_u8_sse41", 5, simd::replace_if_u8_sse41, expected::replace, 16},
    {"replace_if_u8_avx2", 8, simd::replace_if_u8_avx2, expected::replace, 32},
};

const std::vector<Version<simd::GenRdDiffFn>> genRdDiffVersions = {
    {"genRdDiff_c", 0, simd::genRdDiff_c, expected::genRdDiff, 1},
    {"genRdDiff_ssse3", 4, simd::genRdDiff_ssse3, expected::genRdDiff, 16},
    {"genRdDiff_sse41", 5, simd::genRdDiff_sse41, expected::genRdDiff, 16},
};

const std::vector<Version<simd::PruneFn>> pruneVersions = {
    {"pruneFgByRoi_c", 0, simd::pruneFgByRoi_c, expected::prune, 1},
    {"pruneFgByRoi_sse2", 2, simd::pruneFgByRoi_sse2, expected::pruneBlocks16, 16},
    {"pruneFgByRoi_sse41", 5, simd::pruneFgByRoi_sse41, expected::pruneBlocks16, 16},
    {"pruneFgByRoi_avx2", 8, simd::pruneFgByRoi_avx2, expected::pruneBlocks32, 32},
};

const std::vector<Version<simd::MatchFn>> matchVersions = {
    {"isMatchVal_bgr24_c", 0, simd::isMatchVal_bgr24_c, expected::match, 1},
    {"isMatchVal_bgr24_ssse3", 4, simd::isMatchVal_bgr24_ssse3, expected::match, 1},
    {"isMatchVal_bgr24_sse41", 5, simd::isMatchVal_bgr24_sse41, expected::match, 1},
};

const std::vector<Version<simd::TouchFn>> touchVersions = {
    {"isTouch_c", 0, simd::isTouch_c, expected::touch, 1},
    {"isTouch_sse2", 2, simd::isTouch_sse2, expected::touchBlocks16, 16},
};

std::vector<std::string> allVersionNames() {
  std::vector<std::string> names;
  const auto add = [&](const auto& versions) {
    for (const auto& version : versions) names.emplace_back(version.name);
  };
  add(replaceVersions);
  add(genRdDiffVersions);
  add(pruneVersions);
  add(matchVersions);
  add(touchVersions);
  return names;
}
