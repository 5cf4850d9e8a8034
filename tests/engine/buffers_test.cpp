// What the set-up on the first frame makes, and what a second set-up keeps and replaces.
#include <gtest/gtest.h>
#include <malloc.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>

#include "tests/support/engine_fixture.h"

namespace lm::test {
namespace {

// An engine that knows its size and has no buffers yet.
struct UnsizedEngine : kAMBLE {
  UnsizedEngine(int width, int height, int channels) {
    szImgX = width;
    szImgY = height;
    numPixel = width * height;
    frmChn = channels;
  }
};

template <class T>
void expectPlane(const char* name, T* plane, std::size_t count, T value) {
  SCOPED_TRACE(name);
  ASSERT_NE(plane, nullptr);
  EXPECT_EQ(reinterpret_cast<std::uintptr_t>(plane) % 32, 0U) << "32-byte alignment";
  EXPECT_GE(malloc_usable_size(plane), count * sizeof(T));
  EXPECT_TRUE(std::all_of(plane, plane + count, [value](T element) { return element == value; }));
}

TEST(EngineBuffers, SetUpMakesZeroFilledAlignedBytePlanes) {
  UnsizedEngine engine(7, 5, 3);
  ASSERT_TRUE(engine.initBuffer_ncv());
  expectPlane<std::uint8_t>("fgMask", engine.fgMask, 35, 0);
  expectPlane<std::uint8_t>("auxMask", engine.auxMask, 35, 0);
  expectPlane<std::uint8_t>("absorbMask", engine.absorbMask, 35, 0);
  expectPlane<std::uint8_t>("bgImg", engine.bgImg, 105, 0);
}

TEST(EngineBuffers, SetUpMakesZeroFilledAlignedWordPlanes) {
  UnsizedEngine engine(7, 5, 1);
  ASSERT_TRUE(engine.initBuffer_ncv());
  expectPlane<std::int32_t>("updTimer", engine.updTimer, 35, 0);
  expectPlane<std::uint32_t>("auxMap", engine.auxMap, 35, 0);
  expectPlane<std::uint32_t>("nbrCursor", engine.nbrCursor, 35, 0);
  expectPlane<std::uint32_t>("sampleCursor", engine.sampleCursor, 35, 0);
  expectPlane<std::uint32_t>("refreshCount", engine.refreshCount, 35, 0);
}

TEST(EngineBuffers, MatchDistanceStartsAt255ForEveryPixel) {
  UnsizedEngine engine(7, 5, 1);
  ASSERT_TRUE(engine.initBuffer_ncv());
  expectPlane<std::uint32_t>("minDist", engine.minDist, 35, 255);
}

TEST(EngineBuffers, WithoutConfigurationEveryPixelIsOutsideTheUsableRegion) {
  UnsizedEngine engine(7, 5, 1);
  ASSERT_TRUE(engine.initBuffer_ncv());
  expectPlane<std::uint8_t>("roiMask", engine.roiMask, 35, 0);
}

TEST(EngineBuffers, ExistingRegionMaskIsKept) {
  UnsizedEngine engine(3, 1, 1);
  put(engine.roiMask, Bytes{1, 0, 1});
  std::uint8_t* const mask = engine.roiMask;
  ASSERT_TRUE(engine.initBuffer_ncv());
  EXPECT_EQ(engine.roiMask, mask);
  EXPECT_EQ(drawing(engine.roiMask, 3, 3), picture({"1.1"}));
}

TEST(EngineBuffers, PlanesThatTheCallerMadeAreKept) {
  UnsizedEngine engine(3, 1, 1);
  put(engine.fgMask, Bytes{255, 0, 255});
  put(engine.prevFgMask, Bytes{0, 255, 255});
  ASSERT_TRUE(engine.initBuffer_ncv());
  EXPECT_EQ(drawing(engine.fgMask, 3, 3), picture({"#.#"}));
  ASSERT_NE(engine.prevFgMask, nullptr);
  EXPECT_EQ(drawing(engine.prevFgMask, 3, 3), picture({".##"}));
}

TEST(EngineBuffers, SetUpLeavesTheBuffersOfLaterStepsNull) {
  UnsizedEngine engine(7, 5, 3);
  ASSERT_TRUE(engine.initBuffer_ncv());
  EXPECT_EQ(engine.curFrame, nullptr);
  EXPECT_EQ(engine.prevFrame, nullptr);
  EXPECT_EQ(engine.prevFgMask, nullptr);
  EXPECT_EQ(engine.illumDiff, nullptr);
  EXPECT_EQ(engine.rdDiff, nullptr);
  EXPECT_EQ(engine.labelMap, nullptr);
  EXPECT_EQ(engine.labelRows, nullptr);
}

TEST(EngineBuffers, ModelHasOneZeroRecordPerPixel) {
  UnsizedEngine engine(7, 5, 3);
  ASSERT_TRUE(engine.initBuffer_ncv());
  ASSERT_EQ(engine.bgModel.size(), 35U);
  for (const BgModel& model : engine.bgModel) {
    const std::uint8_t* bytes = model.samples[0];
    EXPECT_TRUE(std::all_of(bytes, bytes + sizeof(BgModel), [](std::uint8_t byte) { return byte == 0; }));
  }
}

TEST(EngineBuffers, LifeIsZero) {
  UnsizedEngine engine(7, 5, 3);
  ASSERT_TRUE(engine.initBuffer_ncv());
  ASSERT_NE(engine.fgLife, nullptr);
  EXPECT_TRUE(std::all_of(engine.fgLife, engine.fgLife + 35, [](float life) { return life == 0.0F; }));
}

TEST(EngineBuffers, MorphologyScratchHasRoomForAFrameAndIsEmpty) {
  UnsizedEngine engine(7, 5, 3);
  ASSERT_TRUE(engine.initBuffer_ncv());
  EXPECT_TRUE(engine.morphList.empty());
  EXPECT_GE(engine.morphList.capacity(), 35U);
}

struct GapCase {
  const char* name;
  int width, height;
  float thrConnect;
};
void PrintTo(const GapCase& size, std::ostream* out) { *out << size.name; }

class JoinDistance : public ::testing::TestWithParam<GapCase> {};

TEST_P(JoinDistance, IsAThirtySecondOfTheLongerSide) {
  UnsizedEngine engine(GetParam().width, GetParam().height, 1);
  ASSERT_TRUE(engine.initBuffer_ncv());
  EXPECT_EQ(engine.thrConnect, GetParam().thrConnect);
}

INSTANTIATE_TEST_SUITE_P(EngineBuffers, JoinDistance,
                         ::testing::Values(GapCase{"wide", 640, 480, 20.0F},       // 640 / 32
                                           GapCase{"high", 480, 640, 20.0F},       //
                                           GapCase{"square", 320, 320, 10.0F},     //
                                           GapCase{"fraction", 33, 10, 1.03125F},  // 33 / 32
                                           GapCase{"pixel", 1, 1, 0.03125F}),
                         byName);

struct MinimumCase {
  const char* name;
  float fraction;
  int side, pixels;
};
void PrintTo(const MinimumCase& minimum, std::ostream* out) { *out << minimum.name; }

class MinimumBoxSide : public ::testing::TestWithParam<MinimumCase> {};

TEST_P(MinimumBoxSide, IsTheFractionOfTheSideInSinglePrecisionTruncated) {
  const MinimumCase& expected = GetParam();
  UnsizedEngine wide(expected.side, 1, 1);
  wide.minObjW = expected.fraction;
  ASSERT_TRUE(wide.initBuffer_ncv());
  EXPECT_EQ(wide.minObjWPxl, expected.pixels);
  UnsizedEngine high(1, expected.side, 1);
  high.minObjH = expected.fraction;
  ASSERT_TRUE(high.initBuffer_ncv());
  EXPECT_EQ(high.minObjHPxl, expected.pixels);
}

constexpr int outOfRange = std::numeric_limits<std::int32_t>::min();

INSTANTIATE_TEST_SUITE_P(
    EngineBuffers, MinimumBoxSide,
    ::testing::Values(
        MinimumCase{"defaultOf640", 0.05F, 640, 32}, MinimumCase{"defaultOf480", 0.05F, 480, 24},
        MinimumCase{"truncates", 0.05F, 39, 1},  // 1.95
        // 0.29F is 0.28999999165; times 100 that is 28.999999165, whose nearest float is 29 (in double: 28).
        MinimumCase{"singlePrecision", 0.29F, 100, 29}, MinimumCase{"belowOnePixel", 0.05F, 19, 0},
        MinimumCase{"tooLargeForAnInt", 1e9F, 100, outOfRange},
        MinimumCase{"notANumber", std::numeric_limits<float>::quiet_NaN(), 100, outOfRange}),
    byName);

// A second set-up replaces the background image and the neighbour arrays without freeing them, so the test
// frees them.
class SecondSetUp : public ::testing::Test {
 protected:
  void setUpAgain() {
    droppedBgImg = engine.bgImg;
    droppedArrays = engine.nbrIdx;
    ASSERT_TRUE(engine.initBuffer_ncv());
  }
  void TearDown() override {
    std::free(droppedBgImg);
    for (const int* array : droppedArrays) {
      delete[] array;
    }
  }
  SizedEngine engine{4, 3, 3};
  std::uint8_t* droppedBgImg = nullptr;
  std::vector<int*> droppedArrays;
};

TEST_F(SecondSetUp, KeepsEveryPlaneAndItsContents) {
  engine.fgMask[5] = 255;
  engine.updTimer[5] = 3;
  engine.minDist[5] = 7;
  const void* const before[] = {engine.roiMask,   engine.fgMask,       engine.auxMask,     engine.absorbMask,
                                engine.updTimer,  engine.auxMap,       engine.minDist,     engine.fgLife,
                                engine.nbrCursor, engine.sampleCursor, engine.refreshCount};
  setUpAgain();
  const void* const after[] = {engine.roiMask,   engine.fgMask,       engine.auxMask,     engine.absorbMask,
                               engine.updTimer,  engine.auxMap,       engine.minDist,     engine.fgLife,
                               engine.nbrCursor, engine.sampleCursor, engine.refreshCount};
  EXPECT_TRUE(std::equal(std::begin(before), std::end(before), std::begin(after)));
  EXPECT_EQ(engine.fgMask[5], 255);
  EXPECT_EQ(engine.updTimer[5], 3);
  EXPECT_EQ(engine.minDist[5], 7U);
}

TEST_F(SecondSetUp, ResetsLifeToZero) {
  engine.fgLife[5] = 12.0F;
  setUpAgain();
  EXPECT_EQ(engine.fgLife[5], 0.0F);
}

TEST_F(SecondSetUp, KeepsTheModel) {
  engine.bgModel[5].samples[3][1] = 77;
  setUpAgain();
  EXPECT_EQ(engine.bgModel.size(), 12U);
  EXPECT_EQ(engine.bgModel[5].samples[3][1], 77);
}

TEST_F(SecondSetUp, MakesANewBackgroundImage) {
  engine.bgImg[5] = 99;
  setUpAgain();
  EXPECT_NE(engine.bgImg, droppedBgImg);
  EXPECT_EQ(engine.bgImg[5], 0);
}

TEST_F(SecondSetUp, AppendsTheOffsetsAgain) {
  setUpAgain();
  ASSERT_EQ(engine.nbrOffset.size(), 50U);
  for (std::size_t i = 0; i < 25; ++i) {
    EXPECT_EQ(engine.nbrOffset[i].x, engine.nbrOffset[i + 25].x);
    EXPECT_EQ(engine.nbrOffset[i].y, engine.nbrOffset[i + 25].y);
  }
}

TEST_F(SecondSetUp, GivesEveryPixelANewNeighbourArray) {
  setUpAgain();
  ASSERT_EQ(engine.nbrIdx.size(), 12U);
  for (std::size_t i = 0; i < 12; ++i) {
    EXPECT_NE(engine.nbrIdx[i], droppedArrays[i]);
    EXPECT_EQ(engine.nbrIdx[i][12], static_cast<int>(i)) << "entry 12 is the pixel itself";
  }
}

TEST_F(SecondSetUp, KeepsWhatAHostWroteForDirectNeighboursOutsideTheFrame) {
  engine.nbr4Idx[0] = {7, 7, 7, 7, {}};
  setUpAgain();
  EXPECT_EQ(engine.nbr4Idx[0].up, 7);
  EXPECT_EQ(engine.nbr4Idx[0].right, 1);
  EXPECT_EQ(engine.nbr4Idx[0].down, 4);
  EXPECT_EQ(engine.nbr4Idx[0].left, 7);
}

TEST_F(SecondSetUp, TruncatesLongerListsToTheNewSize) {
  engine.szImgX = 3;
  setUpAgain();
  EXPECT_EQ(engine.nbrIdx.size(), 9U);
  EXPECT_EQ(engine.nbr4Idx.size(), 9U);
  EXPECT_EQ(engine.bgModel.size(), 9U);
}

}  // namespace
}  // namespace lm::test
