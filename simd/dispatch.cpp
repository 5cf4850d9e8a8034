// Chooses the version that each kernel runs: the dispatchers and the public entry points.
#include "simd/kernels.h"
#include "simd/versions.h"

constinit lm::Kernels lm::kernels;

namespace lm {

Kernels kernelsFor(int level) {
  return {.replace = versionFor(level, replaceVersions).function,
          .genRdDiff = versionFor(level, genRdDiffVersions).function,
          .prune = versionFor(level, pruneVersions).function,
          .match = versionFor(level, matchVersions).function,
          .touch = versionFor(level, touchVersions).function};
}

}  // namespace lm

namespace simd {
namespace {

using lm::kernels;

lm::Kernels choose() { return lm::kernelsFor(GetCpuInstructionSet()); }

}  // namespace

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
