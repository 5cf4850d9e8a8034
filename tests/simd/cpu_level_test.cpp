#include "simd/cpu_level.h"

#include <gtest/gtest.h>

#include <ostream>

namespace {

constexpr std::uint32_t without(std::uint32_t word, int bit) {
  return word & ~(1U << static_cast<unsigned>(bit));
}

// A processor with every feature.
constexpr std::uint32_t edx = 1U << 0 | 1U << 15 | 1U << 23 | 1U << 24 | 1U << 25 | 1U << 26;
constexpr std::uint32_t ecx = 1U << 0 | 1U << 9 | 1U << 19 | 1U << 20 | 1U << 23 | 1U << 27 | 1U << 28;
constexpr std::uint32_t xcr0 = 1U << 1 | 1U << 2;
constexpr std::uint32_t ebx = 1U << 5;
constexpr std::uint32_t all = 0xFFFFFFFF;

struct Row {
  const char* name;
  CpuidWords words;  // maxLeaf, leaf1Ecx, leaf1Edx, xcr0, leaf7Ebx
  int level;
};

std::ostream& operator<<(std::ostream& stream, const Row& row) { return stream << row.name; }

class LevelOf : public ::testing::TestWithParam<Row> {};

TEST_P(LevelOf, IsDecidedByTheFirstMissingFeature) { EXPECT_EQ(levelOf(GetParam().words), GetParam().level); }

const Row rows[] = {
    {"Everything", {7, ecx, edx, xcr0, ebx}, 8},
    {"EveryBitSet", {all, all, all, all, all}, 8},
    {"NothingBeyondLeaf0", {0, ecx, edx, xcr0, ebx}, 0},
    {"NoFpu", {7, ecx, without(edx, 0), xcr0, ebx}, 0},
    {"NoCmov", {7, ecx, without(edx, 15), xcr0, ebx}, 0},
    {"NoMmx", {7, ecx, without(edx, 23), xcr0, ebx}, 0},
    {"NoFxsr", {7, ecx, without(edx, 24), xcr0, ebx}, 0},
    {"NoSse", {7, ecx, without(edx, 25), xcr0, ebx}, 0},
    {"NoSse2", {7, ecx, without(edx, 26), xcr0, ebx}, 1},
    {"NoSse3", {7, without(ecx, 0), edx, xcr0, ebx}, 2},
    {"NoSsse3", {7, without(ecx, 9), edx, xcr0, ebx}, 3},
    {"NoSse41", {7, without(ecx, 19), edx, xcr0, ebx}, 4},
    {"NoSse42", {7, without(ecx, 20), edx, xcr0, ebx}, 5},
    {"NoPopcnt", {7, without(ecx, 23), edx, xcr0, ebx}, 5},
    {"NoOsxsave", {7, without(ecx, 27), edx, xcr0, ebx}, 6},
    {"NoAvx", {7, without(ecx, 28), edx, xcr0, ebx}, 6},
    {"SystemSavesNoVectorState", {7, ecx, edx, 1, ebx}, 6},
    {"SystemSavesNoAvxState", {7, ecx, edx, 1U << 1, ebx}, 6},
    {"SystemSavesNoSseState", {7, ecx, edx, 1U << 2, ebx}, 6},
    {"NoAvx2", {7, ecx, edx, xcr0, without(all, 5)}, 7},
    {"NoLeaf7", {6, ecx, edx, xcr0, ebx}, 7},
    {"Leaf1Only", {1, ecx, edx, xcr0, ebx}, 7},
    {"HighestLeafAbove7", {13, ecx, edx, xcr0, ebx}, 8},
    {"BaseFeaturesOnly", {1, 0, edx, 0, 0}, 2},
    {"LaterFeaturesDoNotReplaceAnEarlierOne", {all, without(all, 9), all, all, all}, 3},
};

INSTANTIATE_TEST_SUITE_P(SyntheticProcessors, LevelOf, ::testing::ValuesIn(rows),
                         [](const auto& row) { return row.param.name; });

#if defined(__x86_64__)

TEST(CpuLevel, AgreesWithTheCompilersDetection) {
  const int level = GetCpuInstructionSet();
  EXPECT_EQ(level >= 2, static_cast<bool>(__builtin_cpu_supports("sse2")));
  EXPECT_EQ(level >= 3, static_cast<bool>(__builtin_cpu_supports("sse3")));
  EXPECT_EQ(level >= 4, static_cast<bool>(__builtin_cpu_supports("ssse3")));
  EXPECT_EQ(level >= 5, static_cast<bool>(__builtin_cpu_supports("sse4.1")));
  EXPECT_EQ(level >= 6, __builtin_cpu_supports("sse4.2") && __builtin_cpu_supports("popcnt"));
  EXPECT_EQ(level >= 7, static_cast<bool>(__builtin_cpu_supports("avx")));
  EXPECT_EQ(level >= 8, static_cast<bool>(__builtin_cpu_supports("avx2")));
}

#else

TEST(CpuLevel, IsTheHighestOnOtherArchitectures) { EXPECT_EQ(GetCpuInstructionSet(), simd::level::avx2); }

#endif

TEST(CpuLevel, IsTheSameInBothNamespacesAndAtEveryCall) {
  EXPECT_EQ(simd::GetCpuInstructionSet(), GetCpuInstructionSet());
  EXPECT_EQ(&simd::GetCpuInstructionSet, &::GetCpuInstructionSet);
}

}  // namespace
