// The kernels of object extraction, every version against a model of its contract, between guard pages.
#include "simd/mask_kernels.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "simd/cpu_level.h"
#include "tests/simd/sweep.h"

namespace {

using Bytes = std::vector<std::uint8_t>;
using Words = std::vector<std::uint64_t>;

struct Level {
  const char* name;
  int level;
};

class MaskKernels : public ::testing::TestWithParam<Level> {
 protected:
  void SetUp() override {
    if (GetParam().level > GetCpuInstructionSet()) GTEST_SKIP() << "this processor lacks the level";
    kernels_ = lm::maskKernelsFor(GetParam().level);
  }
  lm::MaskKernels kernels_{};
};
INSTANTIATE_TEST_SUITE_P(EveryVersion, MaskKernels, ::testing::Values(Level{"plain", 7}, Level{"avx2", 8}),
                         [](const auto& test) { return std::string(test.param.name); });

// Extraction's values, others for each of the three, and values that are the same.
const lm::MaskValues meanings[] = {{255, 1, 0},     {1, 1, 0}, {0, 0, 255},
                                   {128, 128, 127}, {3, 3, 3}, {7, 0, 0}};

// A row that mostly holds what has a meaning.
Bytes rowOf(std::size_t pixels, const lm::MaskValues& values, unsigned seed) {
  Bytes row(pixels);
  for (std::size_t i = 0; i < pixels; ++i) {
    seed = seed * 1664525U + 1013904223U;
    const unsigned choice = seed >> 28;
    row[i] = choice < 5    ? values.cleared
             : choice < 9  ? values.set
             : choice < 13 ? values.relabel
                           : static_cast<std::uint8_t>(seed >> 16);
  }
  return row;
}

TEST_P(MaskKernels, RowIsPackedIntoSetAndClearedBits) {
  GuardedBuffer row(longestSwept + 64);
  forEveryPlacement([&](const Placement& at) {
    for (const lm::MaskValues& values : meanings) {
      const Bytes bytes = rowOf(at.length, values, static_cast<unsigned>(at.length + at.offset));
      at.put(row, at.length);
      std::copy(bytes.begin(), bytes.end(), row.begin());
      const std::size_t words = (at.length + 63) / 64;
      // The word behind the row stays.
      Words wantedSet(words + 1), wantedCleared(words + 1);
      wantedSet[words] = wantedCleared[words] = 77;
      for (std::size_t i = 0; i < at.length; ++i) {
        const bool isSet = bytes[i] == values.set || bytes[i] == values.relabel;
        wantedSet[i / 64] |= std::uint64_t{isSet} << (i % 64);
        wantedCleared[i / 64] |= std::uint64_t{bytes[i] == values.cleared} << (i % 64);
      }
      Words set(words + 1, 77), cleared(words + 1, 77);
      kernels_.packRow(row.begin(), at.length, values, set.data(), cleared.data());
      ASSERT_EQ(set, wantedSet) << at;
      ASSERT_EQ(cleared, wantedCleared) << at;
    }
  });
}

TEST_P(MaskKernels, PackingTellsWhetherAnythingIsSetOrNotCleared) {
  constexpr lm::MaskValues values{255, 1, 0};
  Words set(3), cleared(3);
  for (const std::size_t pixels : {1U, 63U, 64U, 65U, 130U}) {
    const auto holds = [&](const Bytes& row, const lm::MaskValues& meaning) {
      return kernels_.packRow(row.data(), row.size(), meaning, set.data(), cleared.data());
    };
    EXPECT_FALSE(holds(Bytes(pixels, 0), values)) << pixels;
    EXPECT_TRUE(holds(Bytes(pixels, 9), {9, 9, 9})) << pixels << ": cleared, but set as well";
    for (const std::size_t at : {std::size_t{0}, pixels / 2, pixels - 1}) {
      for (const std::uint8_t value : Bytes{255, 1, 7}) {
        Bytes row(pixels, 0);
        row[at] = value;
        EXPECT_TRUE(holds(row, values)) << int{value} << " at " << at << " of " << pixels;
      }
    }
  }
  EXPECT_FALSE(kernels_.packRow(nullptr, 0, values, set.data(), cleared.data()));
}

TEST_P(MaskKernels, SetPixelsAreWrittenBackAndOthersStay) {
  GuardedBuffer row(longestSwept + 64);
  forEveryPlacement([&](const Placement& at) {
    for (const lm::MaskValues& values : meanings) {
      const Bytes bytes = rowOf(at.length, values, static_cast<unsigned>(at.length + at.offset));
      Words kept((at.length + 63) / 64);
      for (std::size_t w = 0; w < kept.size(); ++w) kept[w] = 0x9E3779B97F4A7C15U * (w + at.offset + 1);
      Bytes expected = bytes;
      for (std::size_t i = 0; i < at.length; ++i) {
        if (bytes[i] != values.set && bytes[i] != values.relabel) continue;
        const bool stays = (kept[i / 64] >> (i % 64) & 1) != 0;
        expected[i] = stays ? values.relabel : values.cleared;
      }
      at.put(row, at.length);
      std::copy(bytes.begin(), bytes.end(), row.begin());
      kernels_.unpackRow(row.begin(), at.length, values, kept.data());
      ASSERT_EQ(mismatch(row, expected), "") << at;
    }
  });
}

}  // namespace
