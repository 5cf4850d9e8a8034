// The contracts of the internal kernels, which debug builds assert.
#include "simd/contracts.h"

#include <gtest/gtest.h>

#include "simd/simd.h"

namespace {

std::uint8_t bytes[64];

lm::FramePlanes framePlanes() {
  return {.frame = bytes,
          .curFrame = bytes,
          .prevFrame = bytes,
          .bgImg = bytes,
          .rdDiff = bytes,
          .illumDiff = bytes,
          .channels = 3,
          .channel = 2,
          .keep = true};
}

TEST(Contracts, TakeFrameNeedsARangeChannelsAndThePlanesThatItReads) {
  EXPECT_TRUE(lm::canTakeFrame(framePlanes(), 0, 0));
  EXPECT_TRUE(lm::canTakeFrame(framePlanes(), 3, 64));
  EXPECT_FALSE(lm::canTakeFrame(framePlanes(), 4, 3));
  const auto refused = [](auto change) {
    lm::FramePlanes planes = framePlanes();
    change(planes);
    return !lm::canTakeFrame(planes, 0, 8);
  };
  for (const int channels : {-3, 0, 2, 5}) {
    EXPECT_TRUE(refused([&](auto& planes) { planes.channels = channels; })) << channels;
  }
  EXPECT_TRUE(refused([](auto& planes) { planes.channel = 3; }));
  EXPECT_TRUE(refused([](auto& planes) { planes.channel = -1; }));
  EXPECT_TRUE(refused([](auto& planes) { planes.prevFrame = nullptr; }));
  EXPECT_TRUE(refused([](auto& planes) { planes.bgImg = nullptr; }));
  EXPECT_FALSE(refused([](auto& planes) { planes.illumDiff = nullptr, planes.bgImg = nullptr; }));
  EXPECT_FALSE(refused([](auto& planes) {
    planes.rdDiff = planes.illumDiff = planes.prevFrame = nullptr;
    planes.keep = false;
    planes.channel = -1;  // nothing is compared
  }));
}

TEST(Contracts, ListsNeedRoomForOneBlock) {
  lm::BusyBlock busy{};
  EXPECT_TRUE(lm::canFindBusy(&busy, 1));
  EXPECT_FALSE(lm::canFindBusy(&busy, 0));
  EXPECT_FALSE(lm::canFindBusy(nullptr, 1));
  lm::UpdateBlock work{};
  lm::UpdatePlanes planes{};
  EXPECT_TRUE(lm::canFindUpdateWork(planes, &work, 1));
  EXPECT_FALSE(lm::canFindUpdateWork(planes, &work, 0));
  planes.watchLight = true;
  EXPECT_FALSE(lm::canFindUpdateWork(planes, &work, 1)) << "illumDiff is read";
  planes.illumDiff = bytes;
  planes.absorbing = true;
  EXPECT_FALSE(lm::canFindUpdateWork(planes, &work, 1)) << "absorbMask is read";
}

TEST(Contracts, BusyPixelsAreDisjointAndInsideTheBlock) {
  lm::ClassifyPlanes planes{};
  planes.accountLife = true;
  const auto settles = [&](std::size_t end, const lm::BusyPixels& busy, std::uint32_t matched) {
    return lm::canSettleBlock(planes, 32, end, busy, matched);
  };
  EXPECT_TRUE(settles(64, {.outside = 1, .unchanged = 2, .absorbed = 4, .compared = 1U << 31}, 1U << 31));
  EXPECT_FALSE(settles(63, {.outside = 1, .unchanged = 2, .absorbed = 4, .compared = 1U << 31}, 0));
  EXPECT_TRUE(settles(33, {.outside = 1, .unchanged = 0, .absorbed = 0, .compared = 0}, 0));
  EXPECT_FALSE(settles(33, {.outside = 2, .unchanged = 0, .absorbed = 0, .compared = 0}, 0));
  EXPECT_FALSE(settles(64, {.outside = 1, .unchanged = 1, .absorbed = 0, .compared = 0}, 0));
  EXPECT_FALSE(settles(64, {.outside = 0, .unchanged = 6, .absorbed = 4, .compared = 0}, 0));
  EXPECT_FALSE(settles(64, {.outside = 0, .unchanged = 0, .absorbed = 8, .compared = 8}, 0));
  EXPECT_FALSE(settles(64, {.outside = 0, .unchanged = 0, .absorbed = 0, .compared = 8}, 16)) << "matched";
  planes.accountLife = false;
  EXPECT_FALSE(settles(64, {.outside = 0, .unchanged = 1, .absorbed = 0, .compared = 0}, 0));
  EXPECT_FALSE(settles(64, {.outside = 0, .unchanged = 0, .absorbed = 1, .compared = 0}, 0));
}

TEST(Contracts, MatchingNeedsChannelsAndRoomForDistances) {
  std::uint32_t distances[32] = {};
  EXPECT_TRUE(lm::canMatchBlock({.channels = 4, .radius = -1, .needed = 0}, ~0U, distances));
  EXPECT_TRUE(lm::canMatchBlock({.channels = 1, .radius = 0, .needed = 2}, 0, nullptr));
  EXPECT_FALSE(lm::canMatchBlock({.channels = 1, .radius = 0, .needed = 2}, 1, nullptr));
  EXPECT_FALSE(lm::canMatchBlock({.channels = 2, .radius = 0, .needed = 2}, 1, distances));
}

TEST(Contracts, ARowIsPackedIntoTwoDistinctArrays) {
  std::uint64_t set[1] = {}, cleared[1] = {};
  EXPECT_TRUE(lm::canPackRow(64, set, cleared));
  EXPECT_FALSE(lm::canPackRow(64, set, set));
  EXPECT_FALSE(lm::canPackRow(64, nullptr, cleared));
  EXPECT_TRUE(lm::canPackRow(0, nullptr, nullptr));
  EXPECT_TRUE(lm::canUnpackRow(64, set));
  EXPECT_FALSE(lm::canUnpackRow(64, nullptr));
}

#ifndef NDEBUG
TEST(ContractsDeathTest, VersionsAssertTheirContracts) {
  lm::FramePlanes planes = framePlanes();
  planes.channels = 2;
  EXPECT_DEATH(lm::takeFrame_c(planes, 0, 1), "canTakeFrame");
  std::uint64_t bits[1] = {};
  EXPECT_DEATH(lm::packRow_c(bytes, 8, {.set = 1, .relabel = 1, .cleared = 0}, bits, bits), "canPackRow");
  EXPECT_DEATH(simd::replace_if_u8_c(bytes + 1, bytes, 0, 0), "begin <= end");
}
#endif

}  // namespace
