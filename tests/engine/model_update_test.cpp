// Writing a sample, and the pixels that an update always or never writes.
#include <gtest/gtest.h>

#include <cstdint>

#include "tests/engine/quiet_pixel.h"

namespace lm::test {
namespace {

// ---- writing a sample ---------------------------------------------------------------------------

TEST(WriteSample, GoesIntoTheCursorsSlotAndTheBackgroundImage) {
  AbsorbedPixel engine;
  engine.sampleCursor[0] = 11;
  EXPECT_TRUE(engine.updateModel_ncv());
  EXPECT_EQ(engine.slot(11), Bytes{100});
  EXPECT_EQ(engine.slot(10), Bytes{7});
  EXPECT_EQ(engine.slot(12), Bytes{7});
  EXPECT_EQ(engine.bgImg[0], 100);
  EXPECT_EQ(engine.sampleCursor[0], 12U);
}

TEST(WriteSample, CopiesAsManyBytesAsTheFrameHasChannels) {
  for (const Bytes& pixel : {Bytes{1}, Bytes{1, 2, 3}, Bytes{1, 2, 3, 4}}) {
    OnePixel engine(pixel, Bytes(4, 9));
    engine.absorbMask[0] = 255;
    engine.updateModel_ncv();
    EXPECT_EQ(engine.slot(0), pixel);
    EXPECT_EQ(Bytes(engine.bgImg, engine.bgImg + pixel.size()), pixel);
    const Bytes rest(engine.bgModel[0].samples[0] + pixel.size(), engine.bgModel[0].samples[0] + 4);
    EXPECT_EQ(rest, Bytes(4 - pixel.size(), 9)) << "bytes after the channels stay";
  }
}

struct CursorCase {
  const char* name;
  int lockStart, lockEnd;
  std::vector<std::uint32_t> slots;  // the first is the start; each next one follows from a write
};
void PrintTo(const CursorCase& cursor, std::ostream* out) { *out << cursor.name; }

class SampleCursor : public ::testing::TestWithParam<CursorCase> {};

TEST_P(SampleCursor, StepsOverOneSlotOfTheLockedSegment) {
  const CursorCase& cursor = GetParam();
  AbsorbedPixel engine;
  engine.lockSegStart = cursor.lockStart;
  engine.lockSegEnd = cursor.lockEnd;
  engine.sampleCursor[0] = cursor.slots.front();
  for (std::size_t i = 1; i < cursor.slots.size(); ++i) {
    engine.absorbMask[0] = 255;
    engine.updateModel_ncv();
    EXPECT_EQ(engine.slot(static_cast<int>(cursor.slots[i - 1])), Bytes{100}) << "even inside the segment";
    EXPECT_EQ(engine.sampleCursor[0], cursor.slots[i]);
  }
}

INSTANTIATE_TEST_SUITE_P(
    WriteSample, SampleCursor,
    ::testing::Values(
        CursorCase{"segment4to7", 4, 7, {2, 3, 5, 7, 8, 9}},
        CursorCase{"segment0to3", 0, 3, {18, 19, 0, 2, 4, 5}},  // 20 becomes 0 without a test of the segment
        CursorCase{"segment16to19", 16, 19, {14, 15, 17, 19, 0}},
        CursorCase{"lastSlotLocked", 19, 19, {17, 18, 0}},  // 20 after stepping over 19
        CursorCase{"segment0to6", 0, 6, {0, 2, 4, 6, 7}},   //
        CursorCase{"wholeModel", 0, 19, {0, 2, 4, 6, 8, 10, 12, 14, 16, 18, 0}},
        CursorCase{"beyondModel", 0, 49, {17, 19, 0}},  //
        CursorCase{"emptySegment", 4, 3, {3, 4, 5}}),
    byName);

// ---- pixels written at once ---------------------------------------------------------------------

TEST(Update, AbsorbedPixelIsWrittenOnceWhateverItsMask) {
  for (const int mask : {0, 255}) {
    AbsorbedPixel engine;
    engine.fgMask[0] = static_cast<std::uint8_t>(mask);
    engine.sampleCursor[0] = 10;
    engine.updateModel_ncv();
    EXPECT_TRUE(engine.written());
    EXPECT_EQ(engine.absorbMask[0], 0);
    EXPECT_EQ(engine.sampleCursor[0], 11U);
  }
}

TEST(Update, AbsorptionNeedsGhostSuppression) {
  AbsorbedPixel engine;
  engine.ghostSuppression = false;
  engine.updateModel_ncv();
  EXPECT_FALSE(engine.written());
  EXPECT_EQ(engine.absorbMask[0], 255);
}

TEST(Update, AbsorptionIsTheValue255Only) {
  AbsorbedPixel engine;
  engine.absorbMask[0] = 1;
  engine.updateModel_ncv();
  EXPECT_FALSE(engine.written());
  EXPECT_EQ(engine.absorbMask[0], 1);
}

TEST(Update, PixelOutsideTheRegionsIsUnchanged) {
  AbsorbedPixel engine;
  engine.roiMask[0] = 0;
  engine.updTimer[0] = 9;
  EXPECT_TRUE(engine.updateModel_ncv());
  EXPECT_FALSE(engine.written());
  EXPECT_EQ(engine.absorbMask[0], 255);
  EXPECT_EQ(engine.updTimer[0], 9);
}

TEST(Update, ForegroundNeverEntersTheModel) {
  RefreshPixel engine;
  engine.fgMask[0] = 255;
  engine.illumDiff[0] = 200;
  engine.illumRatio = 1.0F;
  engine.updateModel_ncv();
  EXPECT_FALSE(engine.written());
  EXPECT_EQ(engine.refreshCount[0], 1U);
  EXPECT_EQ(engine.illumRatio, 0.0F) << "nothing was examined";
}

class UpdateWithout : public ::testing::TestWithParam<NamedPlane> {};

TEST_P(UpdateWithout, IsRefused) {
  RefreshPixel engine;
  GetParam().drop(engine);
  EXPECT_FALSE(engine.updateModel_ncv());
}

INSTANTIATE_TEST_SUITE_P(Update, UpdateWithout,
                         ::testing::Values(NamedPlane{"curFrame", dropPlane<&kAMBLE::curFrame>},
                                           NamedPlane{"bgImg", dropPlane<&kAMBLE::bgImg>},
                                           NamedPlane{"fgMask", dropPlane<&kAMBLE::fgMask>},
                                           NamedPlane{"prevFgMask", dropPlane<&kAMBLE::prevFgMask>},
                                           NamedPlane{"roiMask", dropPlane<&kAMBLE::roiMask>},
                                           NamedPlane{"rdDiff", dropPlane<&kAMBLE::rdDiff>},
                                           NamedPlane{"illumDiff", dropPlane<&kAMBLE::illumDiff>},
                                           NamedPlane{"minDist", dropPlane<&kAMBLE::minDist>},
                                           NamedPlane{"absorbMask", dropPlane<&kAMBLE::absorbMask>},
                                           NamedPlane{"updTimer", dropPlane<&kAMBLE::updTimer>},
                                           NamedPlane{"refreshCount", dropPlane<&kAMBLE::refreshCount>},
                                           NamedPlane{"sampleCursor", dropPlane<&kAMBLE::sampleCursor>},
                                           NamedPlane{"nbrCursor", dropPlane<&kAMBLE::nbrCursor>}),
                         byName);

TEST(Update, NeedsNoIlluminationDifferenceWhenItsHandlingIsOff) {
  RefreshPixel engine;
  dropPlane<&kAMBLE::illumDiff>(engine);
  engine.illumChange = false;
  EXPECT_TRUE(engine.updateModel_ncv());
  EXPECT_TRUE(engine.written());
}

}  // namespace
}  // namespace lm::test
