// Which configurations the compact engine takes.
#include <gtest/gtest.h>

#include <cstdlib>

#include "compact/engine.h"
#include "engine/kamble.h"

namespace {

// Settings with a mask, as setParam leaves them; the mask itself is not read.
class CompactEngineTakes : public ::testing::Test {
 protected:
  CompactEngineTakes() { settings_.roiMask = static_cast<std::uint8_t*>(std::malloc(1)); }

  bool takes(const lm::compact::Shape& shape) {
    settings_.szImgX = shape.width;
    settings_.szImgY = shape.height;
    return lm::compact::Engine::suits(settings_, shape);
  }

  kAMBLE settings_;
};

// A row of 33 pixels is two blocks, 64 pixels of a plane: 2^31 / 64 = 33554432 rows are one pixel too many.
TEST_F(CompactEngineTakes, PlanesWhoseSizeFits32Bits) {
  EXPECT_TRUE(takes({33, 33554431, 1}));
  EXPECT_FALSE(takes({33, 33554432, 1}));
  EXPECT_TRUE(takes({32, 22369621, 3}));  // 32 x 22369621 x 3 = 2147483616
  EXPECT_FALSE(takes({32, 22369622, 3}));
  EXPECT_FALSE(takes({65536, 65536, 4}));  // wraps to 0
  EXPECT_FALSE(takes({2147483647, 1, 1}));
}

TEST_F(CompactEngineTakes, KnownChannelCountsAndSizesOfAtLeastOne) {
  for (const int channels : {-1, 0, 2, 5}) EXPECT_FALSE(takes({8, 8, channels}));
  for (const int channels : {1, 3, 4}) EXPECT_TRUE(takes({8, 8, channels}));
  EXPECT_FALSE(takes({0, 8, 1}));
  EXPECT_FALSE(takes({8, -1, 1}));
}

TEST_F(CompactEngineTakes, ThresholdsOfBytes) {
  for (const int radius : {-1, 255}) {
    settings_.thrMatch = radius;
    EXPECT_FALSE(takes({8, 8, 3})) << radius;
  }
  for (const int radius : {0, 254}) {
    settings_.thrMatch = radius;
    EXPECT_TRUE(takes({8, 8, 3})) << radius;
  }
  for (const int needed : {0, 21}) {
    settings_.minMatchNum = needed;
    EXPECT_FALSE(takes({8, 8, 3})) << needed;
  }
  settings_.minMatchNum = 20;
  EXPECT_TRUE(takes({8, 8, 3}));
}

TEST_F(CompactEngineTakes, DifferencesFrom0On) {
  settings_.thrHeuris = settings_.thrIllum = 0;
  EXPECT_TRUE(takes({8, 8, 3}));
  settings_.thrHeuris = -1;
  EXPECT_FALSE(takes({8, 8, 3}));
  settings_.thrHeuris = 0;
  settings_.thrIllum = -1;
  EXPECT_FALSE(takes({8, 8, 3}));
}

TEST_F(CompactEngineTakes, FramesOfTheConfiguredSize) {
  ASSERT_TRUE(takes({8, 8, 3}));
  EXPECT_FALSE(lm::compact::Engine::suits(settings_, {9, 8, 3}));
  EXPECT_FALSE(lm::compact::Engine::suits(settings_, {8, 9, 3}));
}

TEST_F(CompactEngineTakes, OnlySettingsWithARegionAndTheUsualNeighbourhood) {
  settings_.numNbr = 24;
  EXPECT_FALSE(takes({8, 8, 3}));
  settings_.numNbr = 25;
  EXPECT_TRUE(takes({8, 8, 3}));
  std::free(settings_.roiMask);
  settings_.roiMask = nullptr;
  EXPECT_FALSE(takes({8, 8, 3}));
}

TEST_F(CompactEngineTakes, OnlyEnginesThatHaveSeenNoFrame) {
  settings_.frmCount = 1;
  EXPECT_FALSE(takes({8, 8, 3}));
}

}  // namespace
