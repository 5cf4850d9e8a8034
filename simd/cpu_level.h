// Instruction-set level of the processor, as the kernels' dispatchers use it.
#pragma once

#include <cstdint>

// The words of CPUID and XGETBV that decide the level.
struct CpuidWords {
  std::uint32_t maxLeaf = 0;   // leaf 0, EAX
  std::uint32_t leaf1Ecx = 0;  // leaf 1, ECX
  std::uint32_t leaf1Edx = 0;  // leaf 1, EDX
  std::uint32_t xcr0 = 0;      // XGETBV(0), low word; only meaningful where leaf 1 reports OSXSAVE
  std::uint32_t leaf7Ebx = 0;  // leaf 7, subleaf 0, EBX
};

// 0 none usable, 1 SSE, 2 SSE2, 3 SSE3, 4 SSSE3, 5 SSE4.1, 6 SSE4.2 with POPCNT, 7 AVX (enabled by the
// system), 8 AVX2. Each level needs all the lower ones. Pure. Feature bits: Intel 64 and IA-32 Architectures
// Software Developer's Manual, volume 2A, CPUID.
int levelOf(const CpuidWords& words);

// Level of this processor; probed on the first call, then remembered. Reachable as simd::GetCpuInstructionSet
// too.
int GetCpuInstructionSet();

namespace simd {
using ::GetCpuInstructionSet;
}
