// Calls every kernel once, then prints the processor's level and the versions in use.
#include <cstdio>

#include "tests/simd/versions.h"

int main() {
  std::uint8_t bytes[64] = {};
  std::uint8_t out[64] = {};
  simd::replace_if_u8(bytes, bytes + 64, 1, 2);
  simd::genRdDiff(bytes, bytes, out, 16, 1, 3, 1);
  simd::pruneFgByRoi(bytes, bytes, 64);
  simd::isMatchVal_bgr32(bytes, bytes, 0);
  simd::isTouch({0, 0, 16, 1}, bytes, bytes, 16, 1);
  std::printf("level %d:", GetCpuInstructionSet());
  for (const std::string& name : namesOf(lm::kernels)) std::printf(" %s", name.c_str());
  std::printf("\n");
}
