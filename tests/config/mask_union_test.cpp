// Combining masks.
#include <gtest/gtest.h>

#include "config/polygon.h"
#include "tests/support/mask_art.h"

namespace lm::test {
namespace {

TEST(Masks, AUnionSetsWhatWas0AndKeepsOtherValues) {
  Bytes into = {0, 0, 0, 5, 1, 255};
  Bytes from = {0, 1, 200, 1, 0, 7};
  unionMask(into.data(), from.data(), 3, 2);
  EXPECT_EQ(into, (Bytes{0, 1, 1, 5, 1, 255}));
  EXPECT_EQ(from, (Bytes{0, 1, 200, 1, 0, 7}));
}

TEST(Masks, ADifferenceClearsWhereTheOtherIsSet) {
  Bytes into = {0, 0, 1, 5, 1, 255};
  Bytes from = {0, 1, 200, 1, 0, 7};
  unionNegMask(into.data(), from.data(), 3, 2);
  EXPECT_EQ(into, (Bytes{0, 0, 0, 0, 1, 0}));
  EXPECT_EQ(from, (Bytes{0, 1, 200, 1, 0, 7}));
}

TEST(Masks, AUnionWithItselfChangesNothingAndADifferenceWithItselfClears) {
  Bytes mask = {0, 1, 0, 5, 255, 0};
  unionMask(mask.data(), mask.data(), 6, 1);
  EXPECT_EQ(mask, (Bytes{0, 1, 0, 5, 255, 0}));
  unionNegMask(mask.data(), mask.data(), 6, 1);
  EXPECT_EQ(mask, Bytes(6, 0));
}

TEST(Masks, AUnionAfterADifferenceOfTheSameMaskSetsItsPixelsAgain) {
  Bytes into = {0, 1, 1, 0};
  Bytes from = {1, 1, 0, 0};
  unionNegMask(into.data(), from.data(), 4, 1);
  EXPECT_EQ(into, (Bytes{0, 0, 1, 0}));
  unionMask(into.data(), from.data(), 4, 1);
  EXPECT_EQ(into, (Bytes{1, 1, 1, 0}));
}

TEST(Masks, OnlyTheGivenPixelsAreCombined) {
  Bytes into(8, 0);
  Bytes from(8, 1);
  unionMask(into.data(), from.data(), 3, 2);
  EXPECT_EQ(into, (Bytes{1, 1, 1, 1, 1, 1, 0, 0}));
  unionNegMask(into.data(), from.data(), 2, 2);
  EXPECT_EQ(into, (Bytes{0, 0, 0, 0, 1, 1, 0, 0}));
}

TEST(Masks, APixelCountBelow1DoesNothing) {
  // 65536^2 wraps to 0, 50000^2 = 2500000000 below zero.
  for (const auto& [width, height] : {std::pair{0, 5}, std::pair{5, 0}, std::pair{-1, 5},
                                      std::pair{65536, 65536}, std::pair{50000, 50000}}) {
    unionMask(nullptr, nullptr, width, height);
    unionNegMask(nullptr, nullptr, width, height);
  }
}

TEST(Masks, ThePixelCountIsThe32BitProduct) {
  Bytes into(131073, 0);
  Bytes from(131073, 1);
  unionMask(into.data(), from.data(), 65537, 65537);  // 2^32 + 2^17 + 1 wraps to 131073
  EXPECT_EQ(into, from);
  unionNegMask(into.data(), from.data(), -1, -131073);
  EXPECT_EQ(into, Bytes(131073, 0));
}

}  // namespace
}  // namespace lm::test
