// The kernels of object extraction: every version against its contract, between guard pages.
#include "simd/mask_kernels.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/simd/sweep.h"

namespace {

using Bytes = std::vector<std::uint8_t>;
using Words = std::vector<std::uint64_t>;

class PackRow : public VersionTest<lm::PackRowFn> {};
INSTANTIATE_TEST_SUITE_P(EveryVersion, PackRow, ::testing::ValuesIn(lm::packRowVersions), VersionName());

class UnpackRow : public VersionTest<lm::UnpackRowFn> {};
INSTANTIATE_TEST_SUITE_P(EveryVersion, UnpackRow, ::testing::ValuesIn(lm::unpackRowVersions), VersionName());

// The values that extraction uses, other values, and equal ones.
const lm::MaskValues meanings[] = {{255, 1, 0},     {1, 1, 0}, {0, 0, 255},
                                   {128, 128, 127}, {3, 3, 3}, {7, 0, 0}};

// A row that holds mostly set and cleared pixels.
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

TEST_P(PackRow, WritesSetAndClearedBits) {
  GuardedBuffer row(longestSwept + 64);
  forEveryPlacement([&](const Placement& at) {
    for (const lm::MaskValues& values : meanings) {
      const Bytes bytes = rowOf(at.length, values, static_cast<unsigned>(at.length + at.offset));
      at.put(row, at.length);
      std::copy(bytes.begin(), bytes.end(), row.begin());
      const std::size_t words = (at.length + 63) / 64;
      // The word after the row keeps its value.
      Words wantedSet(words + 1), wantedCleared(words + 1);
      wantedSet[words] = wantedCleared[words] = 77;
      for (std::size_t i = 0; i < at.length; ++i) {
        const bool isSet = bytes[i] == values.set || bytes[i] == values.relabel;
        wantedSet[i / 64] |= std::uint64_t{isSet} << (i % 64);
        wantedCleared[i / 64] |= std::uint64_t{bytes[i] == values.cleared} << (i % 64);
      }
      Words set(words + 1, 77), cleared(words + 1, 77);
      GetParam().function(row.begin(), at.length, values, set.data(), cleared.data());
      ASSERT_EQ(set, wantedSet) << at;
      ASSERT_EQ(cleared, wantedCleared) << at;
    }
  });
}

TEST_P(PackRow, ReturnsWhetherAnythingIsSetOrNotCleared) {
  constexpr lm::MaskValues values{255, 1, 0};
  Words set(3), cleared(3);
  for (const std::size_t pixels : {1U, 63U, 64U, 65U, 130U}) {
    const auto holds = [&](const Bytes& row, const lm::MaskValues& meaning) {
      return GetParam().function(row.data(), row.size(), meaning, set.data(), cleared.data());
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
  EXPECT_FALSE(GetParam().function(nullptr, 0, values, set.data(), cleared.data()));
}

TEST_P(UnpackRow, WritesSetPixelsAndLeavesOthers) {
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
      GetParam().function(row.begin(), at.length, values, kept.data());
      ASSERT_EQ(mismatch(row, expected), "") << at;
    }
  });
}

}  // namespace
