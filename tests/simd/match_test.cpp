#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstdlib>

#include "tests/simd/expected.h"
#include "tests/simd/sweep.h"

namespace {

using Against = GuardedBuffer::Against;

class Match : public VersionTest<simd::MatchFn> {};
INSTANTIATE_TEST_SUITE_P(EveryVersion, Match, ::testing::ValuesIn(lm::matchVersions), VersionName());

int match(const lm::Version<simd::MatchFn>& version, std::vector<std::uint8_t> pixel,
          std::vector<std::uint8_t> sample, int radius) {
  return version.function(pixel.data(), sample.data(), radius);
}

// Radii around the largest difference of the two, and the ends of their range.
std::vector<int> radiiFor(const std::uint8_t* pixel, const std::uint8_t* sample) {
  int largest = 0;
  for (int c = 0; c < 3; ++c) largest = std::max(largest, std::abs(pixel[c] - sample[c]));
  return {INT_MIN, -1, 0, largest - 1, largest, largest + 1, 255, INT_MAX};
}

TEST_P(Match, EqualsThePlainVersionForEveryCombinationOfExtremes) {
  const auto& e = extremes;
  for (int i = 0; i < 6 * 6 * 6 * 6 * 6 * 6; ++i) {
    const auto digit = [i](int weight) { return static_cast<std::size_t>(i / weight % 6); };
    const std::uint8_t pixel[] = {e[digit(1)], e[digit(6)], e[digit(36)]};
    const std::uint8_t sample[] = {e[digit(216)], e[digit(1296)], e[digit(7776)]};
    for (const int radius : radiiFor(pixel, sample)) {
      ASSERT_EQ(GetParam().function(pixel, sample, radius), expected::match(pixel, sample, radius))
          << "combination " << i << ", radius " << radius;
    }
  }
}

// The three bytes of each argument are directly before or after an inaccessible page.
TEST_P(Match, ReadsThreeBytesOfEachArgumentAtEveryOffset) {
  GuardedBuffer pixel(3);
  GuardedBuffer sample(3);
  Filler fill;
  for (std::size_t round = 0; round < 4096; ++round) {
    pixel.place(3, round % 32, round / 1024 % 2 == 0 ? Against::front : Against::back);
    sample.place(3, round / 32 % 32, round / 2048 % 2 == 0 ? Against::front : Against::back);
    fill(pixel);
    fill(sample);
    const auto pixelBefore = copyOf(pixel);
    const auto sampleBefore = copyOf(sample);
    for (const int radius : radiiFor(pixel.begin(), sample.begin())) {
      ASSERT_EQ(GetParam().function(pixel.begin(), sample.begin(), radius),
                expected::match(pixel.begin(), sample.begin(), radius))
          << "round " << round << ", radius " << radius;
    }
    ASSERT_EQ(mismatch(pixel, pixelBefore) + mismatch(sample, sampleBefore), "") << "round " << round;
  }
}

TEST_P(Match, RadiusZeroAcceptsIdenticalPixelsOnly) {
  EXPECT_EQ(match(GetParam(), {10, 20, 30}, {10, 20, 30}, 0), 0);
  EXPECT_EQ(match(GetParam(), {11, 20, 30}, {10, 20, 30}, 0), -1);
  EXPECT_EQ(match(GetParam(), {10, 19, 30}, {10, 20, 30}, 0), -1);
  EXPECT_EQ(match(GetParam(), {10, 20, 30}, {10, 20, 31}, 0), -1);
}

TEST_P(Match, DifferencesUpToTheRadiusAreSummed) {
  EXPECT_EQ(match(GetParam(), {100, 100, 100}, {120, 80, 120}, 20), 60);
  EXPECT_EQ(match(GetParam(), {100, 100, 100}, {121, 100, 100}, 20), -1);
  EXPECT_EQ(match(GetParam(), {0, 255, 0}, {255, 0, 255}, 255), 765);
}

TEST_P(Match, NegativeRadiusMatchesNothing) { EXPECT_EQ(match(GetParam(), {1, 2, 3}, {1, 2, 3}, -1), -1); }

TEST_P(Match, TheFourthByteNeverCounts) {
  EXPECT_EQ(match(GetParam(), {1, 2, 3, 0}, {1, 2, 3, 255}, 0), 0);
  EXPECT_EQ(simd::isMatchVal_bgr32(std::vector<std::uint8_t>{1, 2, 3, 0}.data(),
                                   std::vector<std::uint8_t>{1, 2, 3, 255}.data(), 0),
            0);
}

}  // namespace
