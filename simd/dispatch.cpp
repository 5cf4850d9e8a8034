// Which version a kernel runs: the tables, the dispatchers and the entry points.
#include "simd/kernels.h"

constinit lm::Kernels lm::kernels;

namespace simd {
namespace {

template <class Function>
struct Version {
  int level;  // the lowest that has its instructions
  Function* function;
};

// The reference first, then up the levels: the last row that the processor reaches is taken.
constexpr Version<ReplaceFn> replaceVersions[] = {
    {0, replace_if_u8_c}, {2, replace_if_u8_sse2}, {5, replace_if_u8_sse41}, {8, replace_if_u8_avx2}};
constexpr Version<GenRdDiffFn> genRdDiffVersions[] = {
    {0, genRdDiff_c}, {4, genRdDiff_ssse3}, {5, genRdDiff_sse41}};
constexpr Version<PruneFn> pruneVersions[] = {
    {0, pruneFgByRoi_c}, {2, pruneFgByRoi_sse2}, {5, pruneFgByRoi_sse41}, {8, pruneFgByRoi_avx2}};
constexpr Version<MatchFn> matchVersions[] = {
    {0, isMatchVal_bgr24_c}, {4, isMatchVal_bgr24_ssse3}, {5, isMatchVal_bgr24_sse41}};
constexpr Version<TouchFn> touchVersions[] = {{0, isTouch_c}, {2, isTouch_sse2}};

template <class Function, std::size_t count>
Function* versionFor(int level, const Version<Function> (&versions)[count]) {
  Function* chosen = versions[0].function;
  for (const auto& version : versions) {
    if (version.level <= level) chosen = version.function;
  }
  return chosen;
}

lm::Kernels choose() { return lm::kernelsFor(GetCpuInstructionSet()); }

using lm::kernels;

}  // namespace
}  // namespace simd

lm::Kernels lm::kernelsFor(int level) {
  return {simd::versionFor(level, simd::replaceVersions), simd::versionFor(level, simd::genRdDiffVersions),
          simd::versionFor(level, simd::pruneVersions), simd::versionFor(level, simd::matchVersions),
          simd::versionFor(level, simd::touchVersions)};
}

namespace simd {

namespace detail {

void replace_if_u8_dispatch(std::uint8_t* begin, std::uint8_t* end, std::uint8_t from, std::uint8_t to) {
  kernels.replace = choose().replace;
  kernels.replace(begin, end, from, to);
}

void gen_rd_diff_dispatch(const std::uint8_t* a, const std::uint8_t* b, std::uint8_t* out, int width,
                          int height, int channels, int channel) {
  kernels.genRdDiff = choose().genRdDiff;
  kernels.genRdDiff(a, b, out, width, height, channels, channel);
}

void prune_fg_by_roi_dispatch(std::uint8_t* mask, const std::uint8_t* roi, int count) {
  kernels.prune = choose().prune;
  kernels.prune(mask, roi, count);
}

int is_match_val_bgr24_dispatch(const std::uint8_t* pixel, const std::uint8_t* sample, int radius) {
  kernels.match = choose().match;
  return kernels.match(pixel, sample, radius);
}

bool is_touch_dispatch(std::tuple<int, int, int, int> box, const std::uint8_t* first,
                       const std::uint8_t* second, int stride, int height) {
  kernels.touch = choose().touch;
  return kernels.touch(box, first, second, stride, height);
}

}  // namespace detail

void replace_if_u8(std::uint8_t* begin, std::uint8_t* end, std::uint8_t from, std::uint8_t to) {
  kernels.replace(begin, end, from, to);
}

void genRdDiff(const std::uint8_t* a, const std::uint8_t* b, std::uint8_t* out, int width, int height,
               int channels, int channel) {
  kernels.genRdDiff(a, b, out, width, height, channels, channel);
}

void pruneFgByRoi(std::uint8_t* mask, const std::uint8_t* roi, int count) { kernels.prune(mask, roi, count); }

int isMatchVal_bgr24(const std::uint8_t* pixel, const std::uint8_t* sample, int radius) {
  return kernels.match(pixel, sample, radius);
}

int isMatchVal_bgr32(const std::uint8_t* pixel, const std::uint8_t* sample, int radius) {
  return kernels.match(pixel, sample, radius);
}

bool isTouch(std::tuple<int, int, int, int> box, const std::uint8_t* first, const std::uint8_t* second,
             int stride, int height) {
  return kernels.touch(box, first, second, stride, height);
}

}  // namespace simd
