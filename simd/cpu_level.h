// The processor's instruction-set level, which decides the version that each kernel runs.
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

// One of simd::level. Pure. Feature bits: Intel 64 and IA-32 Architectures Software Developer's Manual,
// volume 2A, CPUID.
int levelOf(const CpuidWords& words);

// Level of this processor; probed on the first call, then cached. On other architectures than x86-64 always
// level::avx2: there every version is made of instructions that all processors have. Also available as
// simd::GetCpuInstructionSet.
int GetCpuInstructionSet();

namespace simd {

using ::GetCpuInstructionSet;

// The levels. Each includes all lower ones.
namespace level {
inline constexpr int none = 0;   // a base feature is missing
inline constexpr int sse = 1;    // SSE
inline constexpr int sse2 = 2;   // SSE2: every x86-64 processor
inline constexpr int sse3 = 3;   // SSE3
inline constexpr int ssse3 = 4;  // SSSE3
inline constexpr int sse41 = 5;  // SSE4.1
inline constexpr int sse42 = 6;  // SSE4.2 and POPCNT
inline constexpr int avx = 7;    // AVX, enabled by the operating system
inline constexpr int avx2 = 8;   // AVX2
}  // namespace level

}  // namespace simd
