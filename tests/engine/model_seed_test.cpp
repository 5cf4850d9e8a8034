// Seeding the model and the background image from the first frame.
#include <gtest/gtest.h>

#include <numeric>

#include "tests/support/engine_fixture.h"

namespace lm::test {
namespace {

// A frame whose bytes count up from 0.
struct CountingFrame : SizedEngine {
  CountingFrame(int width, int height, int channels) : SizedEngine(width, height, channels) {
    addFrames();
    std::iota(curFrame, curFrame + pixels() * static_cast<std::size_t>(channels), std::uint8_t{0});
  }

  [[nodiscard]] Bytes firstBytes(std::size_t pixel) const {
    Bytes bytes;
    for (const auto& slot : bgModel[pixel].samples) {
      bytes.push_back(slot[0]);
    }
    return bytes;
  }
};

TEST(ModelSeed, SlotZeroIsThePixelAndTheOthersItsFirstNineteenNeighbours) {
  CountingFrame engine(5, 5, 1);
  EXPECT_TRUE(engine.initModel_ncv());
  EXPECT_EQ(engine.firstBytes(12), (Bytes{12,                 // the pixel itself
                                          0,  5, 10, 15, 20,  // column 0
                                          1,  6, 11, 16, 21,  // column 1
                                          2,  7, 12, 17, 22,  // column 2
                                          3,  8, 13, 18}));   // column 3, four rows of five
}

TEST(ModelSeed, NeighbourCursorIsLeftAtNineteen) {
  CountingFrame engine(5, 5, 1);
  engine.initModel_ncv();
  for (std::size_t i = 0; i < 25; ++i) {
    EXPECT_EQ(engine.nbrCursor[i], 19U) << "pixel " << i;
  }
}

TEST(ModelSeed, NeighbourCursorWrapsAtTheListsEnd) {
  CountingFrame engine(5, 5, 1);
  engine.nbrCursor[12] = 20;
  engine.initModel_ncv();
  EXPECT_EQ(engine.firstBytes(12), (Bytes{12,                 //
                                          4,  9, 14, 19, 24,  // entries 20 to 24
                                          0,  5, 10, 15, 20,  // then from the start
                                          1,  6, 11, 16, 21,  //
                                          2,  7, 12, 17}));
  EXPECT_EQ(engine.nbrCursor[12], 14U);  // (20 + 19) mod 25
}

TEST(ModelSeed, MissingNeighbourIsReplacedByThePixelItself) {
  CountingFrame engine(5, 5, 1);
  engine.nbrIdx[12][2] = -1;
  engine.initModel_ncv();
  EXPECT_EQ(engine.bgModel[12].samples[2][0], 5);
  EXPECT_EQ(engine.bgModel[12].samples[3][0], 12);
  EXPECT_EQ(engine.bgModel[12].samples[4][0], 15);
}

class ModelSeedChannels : public ::testing::TestWithParam<int> {};

TEST_P(ModelSeedChannels, SlotHoldsTheChannelsInOrderThenZeros) {
  const int channels = GetParam();
  CountingFrame engine(5, 5, channels);
  engine.initModel_ncv();
  // Slot 7 of the centre holds pixel 6, the first bytes of which count from 6 * channels.
  for (int byte = 0; byte < 4; ++byte) {
    const int expected = byte < channels ? 6 * channels + byte : 0;
    EXPECT_EQ(engine.bgModel[12].samples[7][byte], expected) << "byte " << byte;
  }
}

TEST_P(ModelSeedChannels, BackgroundImageIsTheFrame) {
  CountingFrame engine(4, 3, GetParam());
  engine.initModel_ncv();
  const std::size_t bytes = 12 * static_cast<std::size_t>(GetParam());
  EXPECT_EQ(drawing(engine.bgImg, bytes, 4), drawing(engine.curFrame, bytes, 4));
}

INSTANTIATE_TEST_SUITE_P(ModelSeed, ModelSeedChannels, ::testing::Values(1, 3, 4));

TEST(ModelSeed, BytesBeyondTheChannelsAreNotWritten) {
  CountingFrame engine(5, 5, 3);
  engine.initModel_ncv();
  engine.frmChn = 1;
  engine.initModel_ncv();
  const std::uint8_t* sample = engine.bgModel[12].samples[0];
  EXPECT_EQ(Bytes(sample, sample + 4), (Bytes{12, 37, 38, 0})) << "pixel 12 held 36, 37, 38";
}

TEST(ModelSeed, PixelsOutsideTheRegionsAreSeededToo) {
  CountingFrame engine(5, 5, 1);
  engine.roiMask[12] = 0;
  engine.initModel_ncv();
  EXPECT_EQ(engine.bgModel[12].samples[0][0], 12);
  EXPECT_EQ(engine.bgModel[12].samples[1][0], 0);
  EXPECT_EQ(engine.bgModel[12].samples[19][0], 18);
  EXPECT_EQ(engine.bgImg[12], 12);
}

class ModelSeedWithout : public ::testing::TestWithParam<NamedPlane> {};

TEST_P(ModelSeedWithout, IsRefused) {
  CountingFrame engine(4, 3, 3);
  GetParam().drop(engine);
  EXPECT_FALSE(engine.initModel_ncv());
}

INSTANTIATE_TEST_SUITE_P(ModelSeed, ModelSeedWithout,
                         ::testing::Values(NamedPlane{"curFrame", dropPlane<&kAMBLE::curFrame>},
                                           NamedPlane{"bgImg", dropPlane<&kAMBLE::bgImg>},
                                           NamedPlane{"nbrCursor", dropPlane<&kAMBLE::nbrCursor>}),
                         byName);

}  // namespace
}  // namespace lm::test
