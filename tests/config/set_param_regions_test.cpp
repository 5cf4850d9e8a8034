// The region masks that setParam makes, and their ownership.
#include <gmock/gmock.h>

#include <algorithm>

#include "engine/kamble.h"
#include "tests/support/capture.h"
#include "tests/support/failing_alloc.h"
#include "tests/support/mask_art.h"
#include "tests/support/thrown.h"

namespace lm::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

// Columns left to right - 1, rows top to bottom - 1: masks exclude the left edge and include the right one,
// and include the top edge and exclude the bottom one.
polygon area(const std::string& name, int left, int top, int right, int bottom) {
  const int x0 = left - 1;
  const int x1 = right - 1;
  return {name, {{x0, top}, {x1, top}, {x1, bottom}, {x0, bottom}}, nullptr};
}

class RegionMasks : public ::testing::Test {
 protected:
  std::vector<bool> set(std::vector<std::string> entries) {
    return engine_.setParam(entries, include_, exclude_);
  }

  std::string usable(const Rows& frame) const { return drawn(engine_.roiMask, frame); }

  // A mask drawn in the shape of `frame`.
  static std::string drawn(const std::uint8_t* mask, const Rows& frame) {
    return drawing(mask, frame.size() * frame[0].size(), static_cast<int>(frame[0].size()));
  }

  // Another call replaces these masks without freeing them, so the test frees them.
  static std::vector<std::uint8_t*> masksOf(const kAMBLE& engine) {
    std::vector<std::uint8_t*> masks;
    for (const polygon& region : engine.roiInclude) masks.push_back(region.mask);
    for (const polygon& region : engine.roiExclude) masks.push_back(region.mask);
    return masks;
  }
  static void releaseMasks(const std::vector<std::uint8_t*>& masks) {
    for (std::uint8_t* mask : masks) delete[] mask;
  }

  kAMBLE engine_;
  std::vector<polygon> include_;
  std::vector<polygon> exclude_;
};

const std::vector<std::string> frame8x4 = {"frmW 8", "frmH 4"};

TEST_F(RegionMasks, WithoutExclusionsTheUsableRegionIsTheUnion) {
  include_ = {area("left", 0, 0, 3, 3), area("right", 2, 1, 6, 4)};
  set(frame8x4);
  const Rows expected = {"111.....",  //
                         "111111..",  //
                         "111111..",  //
                         "..1111.."};
  EXPECT_EQ(usable(expected), picture(expected));
}

TEST_F(RegionMasks, AnExclusionAlwaysWins) {
  include_ = {area("all", 0, 0, 8, 4), area("again", 2, 1, 5, 3)};
  exclude_ = {area("tree", 3, 0, 5, 2), area("lamp", 7, 3, 8, 4)};
  set(frame8x4);
  const Rows expected = {"111..111",  //
                         "111..111",  //
                         "11111111",  //
                         "1111111."};
  EXPECT_EQ(usable(expected), picture(expected));
}

TEST_F(RegionMasks, AnExclusionAloneLeavesNothing) {
  exclude_ = {area("tree", 0, 0, 8, 4)};
  set(frame8x4);
  const Rows expected(4, "........");
  EXPECT_EQ(usable(expected), picture(expected));
}

TEST_F(RegionMasks, EveryRegionGetsItsOwnMask) {
  include_ = {area("left", 0, 0, 3, 3), area("below", -5, 2, 20, 9)};
  exclude_ = {area("tree", 3, 0, 5, 2)};
  set(frame8x4);
  const Rows left = {"111.....", "111.....", "111.....", "........"};
  const Rows below = {"........", "........", "11111111", "11111111"};
  const Rows tree = {"...11...", "...11...", "........", "........"};
  EXPECT_EQ(drawn(engine_.roiInclude.at(0).mask, left), picture(left));
  EXPECT_EQ(drawn(engine_.roiInclude.at(1).mask, below), picture(below));
  EXPECT_EQ(drawn(engine_.roiExclude.at(0).mask, tree), picture(tree));
}

TEST_F(RegionMasks, TheEngineKeepsCopiesAndTheCallersListsAreUnchanged) {
  include_ = {area("left", 0, 0, 3, 3)};
  exclude_ = {area("tree", 3, 0, 5, 2)};
  set(frame8x4);
  EXPECT_EQ(include_[0].mask, nullptr);
  EXPECT_EQ(exclude_[0].mask, nullptr);
  EXPECT_EQ(include_[0].points.size(), 4U);
  EXPECT_EQ(engine_.roiInclude.at(0).name, "left");
  EXPECT_EQ(engine_.roiInclude.at(0).points.size(), 4U);
  EXPECT_EQ(engine_.roiExclude.at(0).name, "tree");
}

TEST_F(RegionMasks, TheUsableRegionIsAlignedTo32Bytes) {
  set(frame8x4);
  ASSERT_NE(engine_.roiMask, nullptr);
  EXPECT_EQ(reinterpret_cast<std::uintptr_t>(engine_.roiMask) % 32, 0U);
}

TEST_F(RegionMasks, AMaskThatARegionAlreadyHasIsOverwrittenAndOwnedByTheEngine) {
  include_ = {area("left", 0, 0, 3, 3)};
  auto* const mask = new std::uint8_t[32];
  std::fill_n(mask, 32, std::uint8_t{9});
  include_[0].mask = mask;
  set(frame8x4);
  EXPECT_EQ(engine_.roiInclude.at(0).mask, mask);
  const Rows left = {"111.....", "111.....", "111.....", "........"};
  EXPECT_EQ(drawn(mask, left), picture(left));
  EXPECT_EQ(usable(left), picture(left));
}

TEST_F(RegionMasks, AnEmptyParameterListBuildsThemWithTheSizeOfTheEngine) {
  engine_.szImgX = 5;
  engine_.szImgY = 2;
  include_ = {area("left", 0, 0, 3, 1)};
  EXPECT_THAT(set({}), IsEmpty());
  const Rows expected = {"111..", "....."};
  EXPECT_EQ(usable(expected), picture(expected));
}

TEST_F(RegionMasks, ANewEngineAndAnEmptyParameterListStillCopyTheRegions) {
  include_ = {area("left", 0, 0, 3, 3)};
  exclude_ = {area("tree", 3, 0, 5, 2)};
  EXPECT_THAT(set({}), IsEmpty());
  EXPECT_EQ(engine_.roiInclude.size(), 1U);
  EXPECT_EQ(engine_.roiExclude.size(), 1U);
}

TEST_F(RegionMasks, OneFrameSideAloneDrawsNothing) {
  include_ = {area("left", 0, 0, 3, 3)};
  set({"frmW 8", "frmH -4"});
  EXPECT_EQ(engine_.szImgY, 0);
  EXPECT_EQ(engine_.roiInclude.size(), 1U);
}

TEST_F(RegionMasks, ASecondCallReplacesTheRegionsAndRebuildsTheSameUsableMask) {
  include_ = {area("left", 0, 0, 3, 3)};
  exclude_ = {area("tree", 0, 0, 1, 1)};
  set(frame8x4);
  const std::vector<std::uint8_t*> dropped = masksOf(engine_);
  const std::uint8_t* const usableMask = engine_.roiMask;

  include_ = {area("right", 5, 1, 8, 3)};
  exclude_.clear();
  set({});
  EXPECT_EQ(engine_.roiMask, usableMask);
  EXPECT_EQ(engine_.roiInclude.at(0).name, "right");
  EXPECT_TRUE(engine_.roiExclude.empty());
  const Rows expected = {"........", ".....111", ".....111", "........"};
  EXPECT_EQ(usable(expected), picture(expected));
  releaseMasks(dropped);
}

TEST_F(RegionMasks, ASecondCallWithTheSameListsDropsTheMasksOfTheFirst) {
  include_ = {area("left", 0, 0, 3, 3)};
  set(frame8x4);
  const std::vector<std::uint8_t*> dropped = masksOf(engine_);
  set(frame8x4);
  EXPECT_NE(engine_.roiInclude.at(0).mask, nullptr);
  EXPECT_NE(engine_.roiInclude.at(0).mask, dropped.at(0));
  releaseMasks(dropped);
}

TEST_F(RegionMasks, ASecondCallForALargerFrameIsSafe) {
  include_ = {area("all", 0, 0, 100, 100)};
  set(frame8x4);
  const std::vector<std::uint8_t*> dropped = masksOf(engine_);
  set({"frmW 20", "frmH 10"});
  const Rows expected(10, std::string(20, '1'));
  EXPECT_EQ(usable(expected), picture(expected));
  releaseMasks(dropped);
}

TEST_F(RegionMasks, AnEngineThatLearnedAFrameFirstIsConfiguredForALargerOne) {
  const Capture err(stderr);
  const Bytes frame(32, 50);
  ASSERT_TRUE(engine_.learnBg_ncv(frame.data(), 8, 4, 1));
  include_ = {area("all", 0, 0, 100, 100)};
  set({"frmW 20", "frmH 10"});
  const Rows expected(10, std::string(20, '1'));
  EXPECT_EQ(usable(expected), picture(expected));
}

TEST_F(RegionMasks, ABadValueLeavesTheRegionsCopiedAndTheUsableMaskNotRebuilt) {
  include_ = {area("left", 0, 0, 3, 3)};
  set(frame8x4);
  const std::vector<std::uint8_t*> dropped = masksOf(engine_);
  const Rows before = {"111.....", "111.....", "111.....", "........"};

  include_ = {area("right", 5, 1, 8, 3), area("more", 0, 0, 1, 1)};
  exclude_ = {area("tree", 0, 0, 8, 4)};
  EXPECT_EQ(thrownBy([&] { set({"frmChn 3", "minBoxW x"}); }), "std::invalid_argument: stof");
  EXPECT_EQ(engine_.frmChn, 3);
  ASSERT_EQ(engine_.roiInclude.size(), 2U);
  EXPECT_EQ(engine_.roiInclude[0].name, "right");
  EXPECT_EQ(engine_.roiInclude[0].mask, nullptr);
  EXPECT_EQ(engine_.roiExclude.size(), 1U);
  EXPECT_EQ(usable(before), picture(before));
  releaseMasks(dropped);
}

TEST_F(RegionMasks, ABadValueInTheFirstCallLeavesNoUsableMask) {
  include_ = {area("left", 0, 0, 3, 3)};
  EXPECT_EQ(thrownBy([&] { set({"frmW 8", "frmH x"}); }), "std::invalid_argument: stoi");
  EXPECT_EQ(engine_.roiMask, nullptr);
  EXPECT_EQ(engine_.roiInclude.size(), 1U);
}

// ---- frames of another size than the configuration's --------------------------------------------

TEST_F(RegionMasks, PixelsBeyondTheUsableMaskAreOutsideEveryRegion) {
  include_ = {area("all", 0, 0, 100, 100)};
  set(frame8x4);  // 32 pixels
  const Capture err(stderr);
  const Bytes dark(64, 50);
  const Bytes bright(64, 200);
  ASSERT_TRUE(engine_.learnBg_ncv(dark.data(), 8, 8, 1));
  ASSERT_TRUE(engine_.learnBg_ncv(bright.data(), 8, 8, 1));
  const Rows expected = {"########", "########", "########", "########",
                         "........", "........", "........", "........"};
  EXPECT_EQ(drawn(engine_.fgMask, expected), picture(expected));
}

// Pixel counts that wrap in 32 bits: 2^32 to 0, 50000^2 = 2500000000 below zero, 65537^2 to 131073. Such a
// frame may have any result, but nothing is written outside the buffers.
TEST_F(RegionMasks, APixelCountThatWrapsIsSafe) {
  const FailingAlloc hugeRequestsThrow;
  for (const std::string side : {"65536", "50000", "65537"}) {
    kAMBLE engine;
    std::vector<std::string> entries = {"frmW " + side, "frmH " + side};
    std::vector<polygon> regions = {{"empty", {}, nullptr}};
    try {
      engine.setParam(entries, regions, exclude_);
    } catch (const std::bad_alloc&) {
    }
    EXPECT_EQ(engine.szImgY, std::stoi(side));
  }
}

}  // namespace
}  // namespace lm::test
