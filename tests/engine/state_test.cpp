// Construction, release and the records of the engine.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>

#include "tests/support/engine_fixture.h"
#include "tests/support/failing_alloc.h"

namespace lm::test {
namespace {

TEST(EngineState, ConstructionAllocatesNothing) {
  const FailingAlloc counter;
  const kAMBLE engine;
  EXPECT_EQ(counter.requests(), 0U);
}

TEST(EngineState, SwitchesStartOnExceptSkippingAndAutomaticSensitivity) {
  const kAMBLE engine;
  EXPECT_TRUE(engine.illumChange);
  EXPECT_TRUE(engine.ghostSuppression);
  EXPECT_FALSE(engine.skipFrame);
  EXPECT_FALSE(engine.autoSensitivity);
}

struct IntDefault {
  const char* name;
  std::int32_t kAMBLE::*field;
  std::int32_t value;
};
void PrintTo(const IntDefault& field, std::ostream* out) { *out << field.name; }

class EngineIntDefault : public ::testing::TestWithParam<IntDefault> {};

TEST_P(EngineIntDefault, IsSetByTheConstructor) {
  const kAMBLE engine;
  EXPECT_EQ(engine.*GetParam().field, GetParam().value);
}

INSTANTIATE_TEST_SUITE_P(EngineState, EngineIntDefault,
                         ::testing::Values(IntDefault{"frmChn", &kAMBLE::frmChn, 0},            //
                                           IntDefault{"diffChn", &kAMBLE::diffChn, 0},          //
                                           IntDefault{"numPixel", &kAMBLE::numPixel, 0},        //
                                           IntDefault{"szImgX", &kAMBLE::szImgX, 0},            //
                                           IntDefault{"szImgY", &kAMBLE::szImgY, 0},            //
                                           IntDefault{"numNbr", &kAMBLE::numNbr, 25},           //
                                           IntDefault{"thrMatch", &kAMBLE::thrMatch, 20},       //
                                           IntDefault{"minMatchNum", &kAMBLE::minMatchNum, 2},  //
                                           IntDefault{"thrIllum", &kAMBLE::thrIllum, 5},        //
                                           IntDefault{"thrHeuris", &kAMBLE::thrHeuris, 10},     //
                                           IntDefault{"lifeStaticFrm", &kAMBLE::lifeStaticFrm, 160},
                                           IntDefault{"lifeStatic", &kAMBLE::lifeStatic, 3},      //
                                           IntDefault{"lockSegStart", &kAMBLE::lockSegStart, 0},  //
                                           IntDefault{"lockSegEnd", &kAMBLE::lockSegEnd, 3},      //
                                           IntDefault{"numSegmentLock", &kAMBLE::numSegmentLock, 4},
                                           IntDefault{"numPeriodLock", &kAMBLE::numPeriodLock, 600},
                                           IntDefault{"minObjWPxl", &kAMBLE::minObjWPxl, 0},
                                           IntDefault{"minObjHPxl", &kAMBLE::minObjHPxl, 0},
                                           IntDefault{"thrCcPxl", &kAMBLE::thrCcPxl, 25},
                                           IntDefault{"thrCcPxl2", &kAMBLE::thrCcPxl2, 25},
                                           IntDefault{"holdCcPxl", &kAMBLE::holdCcPxl, 0},
                                           IntDefault{"usPerSec", &kAMBLE::usPerSec, 1000000},
                                           IntDefault{"frmCount", &kAMBLE::frmCount, 0}),
                         byName);

TEST(EngineState, FractionsRatesAndTimesHaveTheirDefaults) {
  const kAMBLE engine;
  EXPECT_EQ(engine.illumRatio, 0.0F);
  EXPECT_EQ(engine.minObjW, 0.05F);
  EXPECT_EQ(engine.minObjH, 0.05F);
  EXPECT_EQ(engine.thrConnect, 10.0F);
  EXPECT_EQ(engine.frmRate, 30.0);
  EXPECT_EQ(engine.curTimestamp, -1);
  EXPECT_EQ(engine.prevTimestamp, -1);
  EXPECT_EQ(engine.elapsedUs, 0);
  EXPECT_EQ(engine.prevTime.tv_sec, 0);
  EXPECT_EQ(engine.prevTime.tv_usec, 0);
  EXPECT_EQ(engine.curTime.tv_sec, 0);
  EXPECT_EQ(engine.curTime.tv_usec, 0);
}

// Every buffer that destoryBuffer releases is null, and every list that it empties is empty.
void expectNoBuffers(const kAMBLE& engine) {
  const void* const buffers[] = {engine.fgMask,    engine.prevFgMask,   engine.bgImg,       engine.auxMask,
                                 engine.curFrame,  engine.prevFrame,    engine.illumDiff,   engine.absorbMask,
                                 engine.roiMask,   engine.rdDiff,       engine.updTimer,    engine.minDist,
                                 engine.auxMap,    engine.fgLife,       engine.labelMap,    engine.labelRows,
                                 engine.nbrCursor, engine.sampleCursor, engine.refreshCount};
  for (std::size_t i = 0; i < std::size(buffers); ++i) {
    EXPECT_EQ(buffers[i], nullptr) << "buffer " << i;
  }
  EXPECT_TRUE(engine.bgModel.empty());
  EXPECT_TRUE(engine.nbrIdx.empty());
  EXPECT_TRUE(engine.nbr4Idx.empty());
}

TEST(EngineState, FreshEngineHasNoBuffersAndNoLists) {
  const kAMBLE engine;
  expectNoBuffers(engine);
  EXPECT_EQ(engine.bgModel.capacity(), 0U);
  EXPECT_EQ(engine.nbrIdx.capacity(), 0U);
  EXPECT_EQ(engine.nbr4Idx.capacity(), 0U);
  EXPECT_EQ(engine.nbrOffset.capacity(), 0U);
  EXPECT_EQ(engine.morphList.capacity(), 0U);
  EXPECT_TRUE(engine.roiInclude.empty());
  EXPECT_TRUE(engine.roiExclude.empty());
}

// A running 4 x 3 engine: every buffer has been made.
struct RunningEngine : SizedEngine {
  RunningEngine() : SizedEngine(4, 3, 3) {
    addFrames();
    put(labelMap, std::vector<std::uint32_t>(12));
    genFgObj_ncv(fgMask);
  }
};

TEST(EngineState, ReleaseLeavesEveryBufferNullAndEveryPerPixelListEmpty) {
  RunningEngine engine;
  ASSERT_NE(engine.labelRows, nullptr);
  engine.destoryBuffer();
  expectNoBuffers(engine);
  EXPECT_GE(engine.bgModel.capacity(), 12U) << "the model's storage is kept for the next set-up";
}

TEST(EngineState, ReleaseKeepsSettingsRegionsOffsetsAndCounters) {
  RunningEngine engine;
  engine.thrMatch = 7;
  engine.frmCount = 9;
  engine.roiInclude = {polygon{"gate", {{1, 2}}, new std::uint8_t[12]}};
  engine.destoryBuffer();
  EXPECT_EQ(engine.thrMatch, 7);
  EXPECT_EQ(engine.szImgX, 4);
  EXPECT_EQ(engine.szImgY, 3);
  EXPECT_EQ(engine.numPixel, 12);
  EXPECT_EQ(engine.frmChn, 3);
  EXPECT_EQ(engine.frmCount, 9);
  ASSERT_EQ(engine.roiInclude.size(), 1U);
  EXPECT_EQ(engine.roiInclude[0].name, "gate");
  EXPECT_NE(engine.roiInclude[0].mask, nullptr);
  EXPECT_EQ(engine.nbrOffset.size(), 25U);
  EXPECT_GE(engine.morphList.capacity(), 12U);
}

TEST(EngineState, ReleasingTwiceIsHarmless) {
  RunningEngine engine;
  engine.destoryBuffer();
  engine.destoryBuffer();
  expectNoBuffers(engine);
}

TEST(EngineState, ReleasingAnEngineThatWasNeverSizedIsHarmless) {
  kAMBLE engine;
  engine.destoryBuffer();
  expectNoBuffers(engine);
}

TEST(EngineState, ReleasedEngineCanBeSizedAgain) {
  RunningEngine engine;
  engine.destoryBuffer();
  EXPECT_TRUE(engine.initBuffer_ncv());
  EXPECT_EQ(engine.bgModel.size(), 12U);
  engine.genFgObj_ncv(engine.fgMask);
  EXPECT_NE(engine.labelMap, nullptr);
  EXPECT_NE(engine.labelRows, nullptr);
}

// The leak check of the sanitizer build fails unless region masks, neighbour arrays and the table of label
// rows are released with the engine.
TEST(EngineState, DestructionReleasesRegionMasksAndEverythingElse) {
  RunningEngine engine;
  engine.roiInclude = {polygon{"in", {}, new std::uint8_t[12]}, polygon{"no mask", {}, nullptr}};
  engine.roiExclude = {polygon{"out", {}, new std::uint8_t[12]}};
  EXPECT_EQ(engine.roiInclude.size() + engine.roiExclude.size(), 3U);
}

TEST(EngineRecords, ModelRecordHoldsTwentySlotsOfFourBytes) {
  EXPECT_EQ(sizeof(BgModel), 80U);
  EXPECT_EQ(BgModel::numSamples, 20);
}

TEST(EngineRecords, NeighbourRecordIsThirtyTwoBytesUpRightDownLeftThenZeros) {
  EXPECT_EQ(sizeof(int128_t), 32U);
  EXPECT_EQ(offsetof(int128_t, up), 0U);
  EXPECT_EQ(offsetof(int128_t, right), 4U);
  EXPECT_EQ(offsetof(int128_t, down), 8U);
  EXPECT_EQ(offsetof(int128_t, left), 12U);
  EXPECT_EQ(offsetof(int128_t, zero), 16U);
}

TEST(EngineVariables, HaveTheirValuesAndCanBeWritten) {
  EXPECT_EQ(THRESH_SAME_PIXEL_x2, 20);
  EXPECT_EQ(THRESH_SAME_PIXEL_x3, 30);
  EXPECT_EQ(g_seed, 0);
  g_seed = 5;
  EXPECT_EQ(g_seed, 5);
  g_seed = 0;
}

}  // namespace
}  // namespace lm::test
