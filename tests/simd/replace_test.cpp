#include <gtest/gtest.h>

#include <algorithm>

#include "tests/simd/expected.h"
#include "tests/simd/sweep.h"

namespace {

class Replace : public VersionTest<simd::ReplaceFn> {};
INSTANTIATE_TEST_SUITE_P(EveryVersion, Replace, ::testing::ValuesIn(lm::replaceVersions), VersionName());

TEST_P(Replace, EqualsThePlainVersionAtEveryLengthAndOffset) {
  GuardedBuffer bytes(longestSwept);
  Filler fewValues(extremes);
  Filler allValues;
  forEveryPlacement([&](const Placement& at) {
    for (Filler* fill : {&fewValues, &allValues}) {
      for (const auto& [from, to] : {std::pair{0, 255}, {255, 0}, {1, 254}, {2, 2}, {254, 1}, {77, 78}}) {
        at.put(bytes, at.length);
        (*fill)(bytes);
        auto model = copyOf(bytes);
        const auto oldByte = static_cast<std::uint8_t>(from);
        const auto newByte = static_cast<std::uint8_t>(to);
        expected::replace(model.data(), model.data() + model.size(), oldByte, newByte);
        GetParam().function(bytes.begin(), bytes.end(), oldByte, newByte);
        ASSERT_EQ(mismatch(bytes, model), "") << at << ", " << from << " to " << to;
      }
    }
  });
}

TEST_P(Replace, ReplacesEveryByteWhenAllAreEqual) {
  GuardedBuffer bytes(100);
  bytes.place(100, 0, GuardedBuffer::Against::back);
  std::fill(bytes.begin(), bytes.end(), std::uint8_t{7});
  GetParam().function(bytes.begin(), bytes.end(), 7, 200);
  EXPECT_EQ(mismatch(bytes, std::vector<std::uint8_t>(100, 200)), "");
}

TEST_P(Replace, LeavesAnEmptyRangeUnchanged) {
  std::uint8_t byte = 7;
  GetParam().function(&byte, &byte, 7, 8);
  EXPECT_EQ(byte, 7);
  GetParam().function(nullptr, nullptr, 7, 8);
}

// 40 bytes: with blocks of 32, one block and a tail of 8.
TEST_P(Replace, TreatsBlockAndTailOfFortyBytesAlike) {
  GuardedBuffer bytes(40);
  bytes.place(40, 0, GuardedBuffer::Against::back);
  std::vector<std::uint8_t> model(40, 5);
  std::fill(bytes.begin(), bytes.end(), std::uint8_t{5});
  for (const std::size_t i : {0U, 31U, 32U, 39U}) {
    bytes.begin()[i] = 3;
    model[i] = 9;
  }
  GetParam().function(bytes.begin(), bytes.end(), 3, 9);
  EXPECT_EQ(mismatch(bytes, model), "");
}

}  // namespace
