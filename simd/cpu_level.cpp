#include "simd/cpu_level.h"

#if defined(__x86_64__)
#include <cpuid.h>
#endif

#include <atomic>

namespace {

constexpr std::uint32_t bit(unsigned n) { return std::uint32_t{1} << n; }
constexpr bool has(std::uint32_t word, std::uint32_t bits) { return (word & bits) == bits; }

// Leaf 1, EDX: the base features, then SSE and SSE2.
constexpr std::uint32_t fpu = bit(0), cmov = bit(15), mmx = bit(23), fxsr = bit(24), sse = bit(25),
                        sse2 = bit(26);
// Leaf 1, ECX.
constexpr std::uint32_t sse3 = bit(0), ssse3 = bit(9), sse41 = bit(19), sse42 = bit(20), popcnt = bit(23);
constexpr std::uint32_t osxsave = bit(27), avx = bit(28);
// XCR0: the operating system saves the 128-bit and the 256-bit registers.
constexpr std::uint32_t sseState = bit(1), avxState = bit(2);
// Leaf 7, EBX.
constexpr std::uint32_t avx2 = bit(5);

#if defined(__x86_64__)

// XGETBV(0). Raises an illegal instruction where OSXSAVE is not reported.
std::uint32_t readXcr0() {
  std::uint32_t low = 0;
  std::uint32_t high = 0;
  asm volatile("xgetbv" : "=a"(low), "=d"(high) : "c"(0));
  return low;
}

CpuidWords readWords() {
  CpuidWords words;
  std::uint32_t eax = 0, ebx = 0, ecx = 0, edx = 0;
  words.maxLeaf = static_cast<std::uint32_t>(__get_cpuid_max(0, nullptr));
  // Returns 0 and writes nothing if the leaf does not exist.
  if (__get_cpuid_count(1, 0, &eax, &ebx, &ecx, &edx) != 0) {
    words.leaf1Ecx = ecx;
    words.leaf1Edx = edx;
  }
  if (has(words.leaf1Ecx, osxsave)) words.xcr0 = readXcr0();
  if (__get_cpuid_count(7, 0, &eax, &ebx, &ecx, &edx) != 0) words.leaf7Ebx = ebx;
  return words;
}

int probe() { return levelOf(readWords()); }

#else

// Every version runs on every processor, and results are those of x86-64 with AVX2.
int probe() { return simd::level::avx2; }

#endif

constinit std::atomic<int> cachedLevel = -1;  // not yet probed; every thread finds the same

}  // namespace

int levelOf(const CpuidWords& words) {
  namespace level = simd::level;
  if (words.maxLeaf < 1) return level::none;
  if (!has(words.leaf1Edx, fpu | cmov | mmx | fxsr | sse)) return level::none;
  if (!has(words.leaf1Edx, sse2)) return level::sse;
  if (!has(words.leaf1Ecx, sse3)) return level::sse2;
  if (!has(words.leaf1Ecx, ssse3)) return level::sse3;
  if (!has(words.leaf1Ecx, sse41)) return level::ssse3;
  if (!has(words.leaf1Ecx, sse42 | popcnt)) return level::sse41;
  // If the system does not save the wide registers, a task switch loses their upper halves.
  if (!has(words.leaf1Ecx, osxsave | avx) || !has(words.xcr0, sseState | avxState)) return level::sse42;
  // A leaf above the highest returns the words of the highest leaf.
  if (words.maxLeaf < 7 || !has(words.leaf7Ebx, avx2)) return level::avx;
  return level::avx2;
}

int GetCpuInstructionSet() {
  int level = cachedLevel.load(std::memory_order_relaxed);
  if (level != -1) return level;
  level = probe();
  cachedLevel.store(level, std::memory_order_relaxed);
  return level;
}
