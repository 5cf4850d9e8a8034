// Calls every kernel once and prints the processor's level and the versions that were chosen.
#include <cstdio>

#include "simd/kernels.h"
#include "tests/simd/versions.h"

int main() {
  std::uint8_t bytes[64] = {};
  std::uint8_t out[64] = {};
  simd::replace_if_u8(bytes, bytes + 64, 1, 2);
  simd::genRdDiff(bytes, bytes, out, 16, 1, 3, 1);
  simd::pruneFgByRoi(bytes, bytes, 64);
  simd::isMatchVal_bgr32(bytes, bytes, 0);
  simd::isTouch({0, 0, 16, 1}, bytes, bytes, 16, 1);
  std::printf("level %d: %s %s %s %s %s\n", GetCpuInstructionSet(),
              nameOf(lm::kernels.replace, replaceVersions).c_str(),
              nameOf(lm::kernels.genRdDiff, genRdDiffVersions).c_str(),
              nameOf(lm::kernels.prune, pruneVersions).c_str(),
              nameOf(lm::kernels.match, matchVersions).c_str(),
              nameOf(lm::kernels.touch, touchVersions).c_str());
}
