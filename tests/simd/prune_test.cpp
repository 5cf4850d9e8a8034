#include <gmock/gmock.h>

#include <algorithm>
#include <numeric>

#include "tests/simd/sweep.h"

namespace {

class Prune : public VersionTest<simd::PruneFn> {};
INSTANTIATE_TEST_SUITE_P(EveryVersion, Prune, ::testing::ValuesIn(pruneVersions), VersionName());

TEST_P(Prune, EqualsItsModelAtEveryLengthAndOffset) {
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
      GetParam().expected(model.data(), region.data(), static_cast<int>(at.length));
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
  // One element a call, so that each is tested against its own region byte by every version.
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
                         ::testing::ValuesIn(pruneVersions.begin() + 1, pruneVersions.end()), VersionName());

TEST_P(VectorPrune, WholeBlocksStayAsTheyAreOutsideTheRegion) {
  const auto block = static_cast<std::size_t>(GetParam().block);
  std::vector<std::uint8_t> mask(block, 255), roi(block, 0);
  GetParam().function(mask.data(), roi.data(), GetParam().block);
  EXPECT_EQ(mask, std::vector<std::uint8_t>(block, 255));
}

TEST_P(VectorPrune, TheByteAfterABlockIsClearedByTheFirstRegionByte) {
  const auto block = static_cast<std::size_t>(GetParam().block);
  std::vector<std::uint8_t> mask(block + 1, 255), roi(block + 1, 0);
  GetParam().function(mask.data(), roi.data(), GetParam().block + 1);
  std::vector<std::uint8_t> expected(block + 1, 255);
  expected.back() = 0;
  EXPECT_EQ(mask, expected);
}

TEST_P(VectorPrune, TheTailIsTestedAgainstTheStartOfTheRegion) {
  const auto block = static_cast<std::size_t>(GetParam().block);
  std::vector<std::uint8_t> mask(block + 3, 255), roi(block + 3, 0);
  roi[1] = 1;                       // keeps byte 1 of the tail, although the region byte beside that one is 0
  roi[block] = roi[block + 2] = 1;  // beside bytes 0 and 2 of the tail, which do not look there
  GetParam().function(mask.data(), roi.data(), GetParam().block + 3);
  std::vector<std::uint8_t> expected(block + 3, 255);
  expected[block] = expected[block + 2] = 0;
  EXPECT_EQ(mask, expected);
}

TEST(PruneReference, ClearsForegroundWhereTheRegionHolds255) {
  std::uint8_t mask[] = {255, 255, 7, 0};
  const std::uint8_t roi[] = {255, 1, 1, 255};
  simd::pruneFgByRoi_c(mask, roi, 4);
  EXPECT_THAT(mask, ::testing::ElementsAre(0, 255, 7, 0));
}

}  // namespace
