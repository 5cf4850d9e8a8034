#include <gmock/gmock.h>

#include <algorithm>
#include <numeric>

#include "tests/simd/expected.h"
#include "tests/simd/sweep.h"

namespace {

// Block size of a version, in bytes; 1 for the reference.
int blockOf(const lm::Version<simd::PruneFn>& version) {
  if (version.level == simd::level::none) return 1;
  return version.level < simd::level::avx2 ? 16 : 32;
}

void expectedPrune(const lm::Version<simd::PruneFn>& version, std::uint8_t* mask, const std::uint8_t* roi,
                   int count) {
  const int block = blockOf(version);
  if (block == 1) return expected::prune(mask, roi, count);
  expected::pruneBlocks(mask, roi, count, block);
}

class Prune : public VersionTest<simd::PruneFn> {};
INSTANTIATE_TEST_SUITE_P(EveryVersion, Prune, ::testing::ValuesIn(lm::pruneVersions), VersionName());

TEST_P(Prune, EqualsThePlainVersionAtEveryLengthAndOffset) {
  GuardedBuffer mask(longestSwept);
  GuardedBuffer roi(longestSwept);
  Filler maskValues({0, 1, 255});
  Filler roiValues({0, 1, 1, 1, 2, 255});
  Filler allValues;
  forEveryPlacement([&](const Placement& at) {
    for (const auto& [fillMask, fillRoi] : {std::pair{&maskValues, &roiValues}, {&allValues, &allValues}}) {
      at.put(mask, at.length, 0);
      at.put(roi, at.length, 1);
      (*fillMask)(mask);
      (*fillRoi)(roi);
      auto model = copyOf(mask);
      const auto region = copyOf(roi);
      expectedPrune(GetParam(), model.data(), region.data(), static_cast<int>(at.length));
      GetParam().function(mask.begin(), roi.begin(), static_cast<int>(at.length));
      ASSERT_EQ(mismatch(mask, model), "") << at;
      ASSERT_EQ(mismatch(roi, region), "") << at;
    }
  });
}

TEST_P(Prune, CountBelowOneDoesNothing) {
  for (const int count : {0, -1, -16, -33, INT32_MIN}) GetParam().function(nullptr, nullptr, count);
}

TEST_P(Prune, OnlyTheRegionValueOneIsInside) {
  std::vector<std::uint8_t> roi(256);
  std::iota(roi.begin(), roi.end(), std::uint8_t{0});
  // One element per call, so that every version tests it against its own region byte.
  for (std::size_t i = 0; i < roi.size(); ++i) {
    std::uint8_t mask = 255;
    GetParam().function(&mask, &roi[i], 1);
    EXPECT_EQ(mask, i == 1 ? 255 : 0) << "region value " << i;
  }
}

TEST_P(Prune, AnArrayShorterThanABlockIsPrunedAgainstItsOwnRegion) {
  std::vector<std::uint8_t> mask(15, 255), roi(15);
  for (std::size_t i = 0; i < roi.size(); ++i) roi[i] = i % 2 == 1 ? 1 : 0;
  GetParam().function(mask.data(), roi.data(), 15);
  for (std::size_t i = 0; i < mask.size(); ++i) EXPECT_EQ(mask[i], i % 2 == 1 ? 255 : 0) << i;
}

class VectorPrune : public Prune {};
INSTANTIATE_TEST_SUITE_P(EveryVersion, VectorPrune,
                         ::testing::ValuesIn(std::begin(lm::pruneVersions) + 1, std::end(lm::pruneVersions)),
                         VersionName());

TEST_P(VectorPrune, WholeBlocksOutsideTheRegionAreUnchanged) {
  const auto block = static_cast<std::size_t>(blockOf(GetParam()));
  std::vector<std::uint8_t> mask(block, 255), roi(block, 0);
  GetParam().function(mask.data(), roi.data(), blockOf(GetParam()));
  EXPECT_EQ(mask, std::vector<std::uint8_t>(block, 255));
}

TEST_P(VectorPrune, TheByteAfterABlockIsClearedByTheFirstRegionByte) {
  const auto block = static_cast<std::size_t>(blockOf(GetParam()));
  std::vector<std::uint8_t> mask(block + 1, 255), roi(block + 1, 0);
  GetParam().function(mask.data(), roi.data(), blockOf(GetParam()) + 1);
  std::vector<std::uint8_t> expected(block + 1, 255);
  expected.back() = 0;
  EXPECT_EQ(mask, expected);
}

TEST_P(VectorPrune, TheTailIsTestedAgainstTheStartOfTheRegion) {
  const auto block = static_cast<std::size_t>(blockOf(GetParam()));
  std::vector<std::uint8_t> mask(block + 3, 255), roi(block + 3, 0);
  roi[1] = 1;                       // keeps byte 1 of the tail, whose own region byte is 0
  roi[block] = roi[block + 2] = 1;  // ignored: bytes 0 and 2 of the tail are tested against roi[0] and roi[2]
  GetParam().function(mask.data(), roi.data(), blockOf(GetParam()) + 3);
  std::vector<std::uint8_t> expected(block + 3, 255);
  expected[block] = expected[block + 2] = 0;
  EXPECT_EQ(mask, expected);
}

// 720 x 405 = 291600 pixels: whole blocks of 16, and 16 pixels after the last block of 32. The region leaves
// out the top left corner, and the object covers the bottom right one.
TEST(PruneAcrossLevels, AHalfFullLastBlockOf32IsPrunedWithAvx2Only) {
  if (GetCpuInstructionSet() < simd::level::avx2) GTEST_SKIP() << "this processor lacks AVX2";
  constexpr std::size_t width = 720, height = 405, pixels = width * height;
  std::vector<std::uint8_t> roi(pixels, 1), mask(pixels, 0);
  for (std::size_t y = 0; y < 40; ++y) std::fill_n(roi.begin() + y * width, 72, std::uint8_t{0});
  for (std::size_t y = height - 40; y < height; ++y) {
    std::fill_n(mask.begin() + (y + 1) * width - 72, 72, std::uint8_t{255});
  }
  const auto prunedBy = [&](simd::PruneFn* version) {
    std::vector<std::uint8_t> pruned = mask;
    version(pruned.data(), roi.data(), static_cast<int>(pixels));
    return pruned;
  };
  std::vector<std::uint8_t> withoutLast16 = mask;
  withoutLast16.resize(pixels - 16);
  withoutLast16.resize(pixels, 0);
  EXPECT_EQ(prunedBy(simd::pruneFgByRoi_sse2), mask);
  EXPECT_EQ(prunedBy(simd::pruneFgByRoi_sse41), mask);
  EXPECT_EQ(prunedBy(simd::pruneFgByRoi_avx2), withoutLast16);
}

TEST(PruneReference, ClearsForegroundWhereTheRegionHolds255) {
  std::uint8_t mask[] = {255, 255, 7, 0};
  const std::uint8_t roi[] = {255, 1, 1, 255};
  simd::pruneFgByRoi_c(mask, roi, 4);
  EXPECT_THAT(mask, ::testing::ElementsAre(0, 255, 7, 0));
}

}  // namespace
