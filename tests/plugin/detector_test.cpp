#include <gtest/gtest.h>

#include "plugin/detector.h"

#include "engine/kamble.h"
#include "tests/plugin/scene.h"
#include "tests/support/by_name.h"
#include "tests/support/capture.h"
#include "tests/support/thrown.h"

namespace lm::test {
namespace {

const std::string refusedRegions = "Error: region of interest is empty! \n";

std::string refusedSizes(int channels, int width, int height) {
  return "Error: invalid parameter[frmChn:" + std::to_string(channels) + ",frmW:" + std::to_string(width) +
         ",frmH:" + std::to_string(height) + "] \n";
}

// ---- construction and init ----------------------------------------------------------------------

TEST(Detector, ANewDetectorIsEmptyAndHasNoEngine) {
  const lightMotion detector;
  EXPECT_EQ(detector.engine, nullptr);
  EXPECT_EQ(detector.frmW, 0);
  EXPECT_EQ(detector.frmH, 0);
  EXPECT_EQ(detector.frmChn, 0);
  EXPECT_EQ(detector.reserved, 0U);
  EXPECT_EQ(detector.resText, "");
  EXPECT_EQ(detector.fgMaskCopy, nullptr);
  EXPECT_TRUE(detector.objList.empty());
}

TEST(Detector, InitPassesSettingsAndRegionsToTheEngine) {
  lightMotion detector;
  const std::string excluded =
      R"(,"ror":[{"name":"tree","points":[{"x":"0","y":"0"},{"x":"0.5","y":"0"},{"x":"0.5","y":"1"}]}])";
  const std::string document = documentFor({64, 32, 3}, R"(,"sensitivity":"4","minBoxW":"0.25")" + excluded);
  ASSERT_TRUE(detector.init(document.c_str()));
  ASSERT_NE(detector.engine, nullptr);
  EXPECT_EQ(detector.frmW, 64);
  EXPECT_EQ(detector.frmH, 32);
  EXPECT_EQ(detector.frmChn, 3);
  EXPECT_EQ(detector.engine->szImgX, 64);
  EXPECT_EQ(detector.engine->szImgY, 32);
  EXPECT_EQ(detector.engine->frmChn, 3);
  EXPECT_EQ(detector.engine->thrMatch, 9);
  EXPECT_EQ(detector.engine->minObjW, 0.25F);
  ASSERT_EQ(detector.engine->roiInclude.size(), 1U);
  EXPECT_EQ(detector.engine->roiInclude[0].name, "all");
  ASSERT_EQ(detector.engine->roiExclude.size(), 1U);
  EXPECT_EQ(detector.engine->roiExclude[0].name, "tree");
  EXPECT_NE(detector.engine->roiMask, nullptr);
}

TEST(Detector, InitIgnoresWhichEntriesTheEngineAccepts) {
  lightMotion detector;
  const std::string document = documentFor(smallGrey, R"(,"sensitivity":"9","lifeStatic":"5","maxBoxW":"1")");
  const Printed printed = printedBy([&] { EXPECT_TRUE(detector.init(document.c_str())); });
  EXPECT_EQ(printed, Printed{});
  EXPECT_EQ(detector.engine->thrMatch, 13);
  EXPECT_EQ(detector.engine->lifeStatic, 3);
}

TEST(Detector, AnEntryWithAnEmptyValueTakesTheValueOfThePreviousEntry) {
  lightMotion detector;
  const std::string document =
      documentFor(smallGrey, R"(,"sensitivity":"2","lcAdap":"","minBoxW":"1","minBoxH":" ")");
  ASSERT_TRUE(detector.init(document.c_str()));
  EXPECT_EQ(detector.engine->thrMatch, 17);
  EXPECT_EQ(detector.engine->thrIllum, 15);  // level 2, as "sensitivity"
  EXPECT_EQ(detector.engine->minObjW, 1.0F);
  EXPECT_EQ(detector.engine->minObjH, 1.0F);
}

// Marks an engine, in a field that no configuration writes.
constexpr std::int32_t marked = 77;

TEST(Detector, InitKeepsAnExistingEngine) {
  lightMotion detector;
  detector.engine = new kAMBLE;
  detector.engine->holdCcPxl = marked;
  ASSERT_TRUE(detector.init(documentFor(smallGrey).c_str()));
  EXPECT_EQ(detector.engine->holdCcPxl, marked);
}

TEST(Detector, ARefusedDocumentLeavesTheEngineForTheNextInit) {
  lightMotion detector;
  const Printed printed = printedBy([&] { EXPECT_FALSE(detector.init(documentFor({64, 32, 0}).c_str())); });
  EXPECT_EQ(printed.out, refusedSizes(0, 64, 32));
  ASSERT_NE(detector.engine, nullptr);
  detector.engine->holdCcPxl = marked;
  ASSERT_TRUE(detector.init(documentFor(smallGrey).c_str()));
  EXPECT_EQ(detector.engine->holdCcPxl, marked);
}

TEST(Detector, ANullDocumentThrowsAfterTheEngineWasMade) {
  lightMotion detector;
  EXPECT_EQ(thrownBy([&] { detector.init(nullptr); }), nullText);
  EXPECT_NE(detector.engine, nullptr);
}

TEST(Detector, InitAcceptsAnyPositiveChannelCount) {
  for (const int channels : {1, 2, 3, 4, 5, 1000}) {
    lightMotion detector;
    const Printed printed = printedBy([&] {
      EXPECT_TRUE(detector.init(documentFor({64, 32, channels}).c_str()));
    });
    EXPECT_EQ(printed, Printed{}) << channels;
    EXPECT_EQ(detector.frmChn, channels);
  }
}

struct Refusal {
  const char* name;
  std::string document;
  std::string message;
};
void PrintTo(const Refusal& refusal, std::ostream* out) { *out << refusal.document; }

class Refusals : public ::testing::TestWithParam<Refusal> {};

TEST_P(Refusals, PrintTheReasonOnStandardOutputAndConfigureNothing) {
  lightMotion detector;
  const Printed printed = printedBy([&] { EXPECT_FALSE(detector.init(GetParam().document.c_str())); });
  EXPECT_EQ(printed, (Printed{GetParam().message, ""}));
  ASSERT_NE(detector.engine, nullptr);
  EXPECT_EQ(detector.engine->szImgX, 0);
  EXPECT_EQ(detector.engine->roiMask, nullptr);
}

INSTANTIATE_TEST_SUITE_P(
    Sizes, Refusals,
    ::testing::Values(
        Refusal{"NoChannels", documentFor({64, 32, 0}), refusedSizes(0, 64, 32)},
        Refusal{"NegativeChannels", documentFor({64, 32, -3}), refusedSizes(-3, 64, 32)},
        Refusal{"MissingChannels", R"({"frmW":"64","frmH":"32","roi":[{}]})", refusedSizes(0, 64, 32)},
        Refusal{"ChannelsAsANumber", R"({"frmW":"64","frmH":"32","frmChn":3,"roi":[{}]})",
                refusedSizes(0, 64, 32)},
        Refusal{"NoWidth", documentFor({0, 32, 1}), refusedSizes(1, 0, 32)},
        Refusal{"NegativeWidth", documentFor({-64, 32, 1}), refusedSizes(1, -64, 32)},
        Refusal{"NoHeight", documentFor({64, 0, 1}), refusedSizes(1, 64, 0)},
        Refusal{"NegativeHeight", documentFor({64, -1, 1}), refusedSizes(1, 64, -1)},
        Refusal{"SmallestNumbers", documentFor({-2147483647, -2147483647, -2147483647}),
                refusedSizes(-2147483647, -2147483647, -2147483647)},
        Refusal{"EmptyObject", "{}", refusedSizes(0, 0, 0)},
        // The sizes are checked before anything else is read.
        Refusal{"SizesBeforeRegions", R"({"frmW":"64","frmH":"0","frmChn":"1"})", refusedSizes(1, 64, 0)},
        Refusal{"SizesBeforeCoordinates",
                documentFor({64, 0, 1}, "", R"({"points":[{"x":"a"},{"x":"a"},{"x":"a"}]})"),
                refusedSizes(1, 64, 0)},
        Refusal{"SizesBeforeSettings", documentFor({64, 0, 1}, R"(,"sensitivity":"high")"),
                refusedSizes(1, 64, 0)}),
    byName);

INSTANTIATE_TEST_SUITE_P(
    NotJson, Refusals,
    ::testing::Values(Refusal{"Words", "not json",
                              "Error: json configuration is incorrect format \n" + refusedSizes(0, 0, 0)},
                      Refusal{"Empty", "",
                              "Error: json configuration is incorrect format \n" + refusedSizes(0, 0, 0)},
                      Refusal{"CutOff", R"({"frmW":"64","frmH":"32","frmChn":"1")",
                              "Error: json configuration is incorrect format \n" + refusedSizes(0, 0, 0)}),
    byName);

std::string withRoi(const std::string& member) {
  return R"({"frmW":"64","frmH":"32","frmChn":"1")" + member + "}";
}

INSTANTIATE_TEST_SUITE_P(
    Regions, Refusals,
    ::testing::Values(Refusal{"Missing", withRoi(""), refusedRegions},
                      Refusal{"Empty", withRoi(R"(,"roi":[])"), refusedRegions},
                      Refusal{"Null", withRoi(R"(,"roi":null)"), refusedRegions},
                      Refusal{"Object", withRoi(R"(,"roi":{})"), refusedRegions},
                      Refusal{"String", withRoi(R"(,"roi":"all")"), refusedRegions},
                      Refusal{"Number", withRoi(R"(,"roi":1)"), refusedRegions},
                      Refusal{"OnlyExcluded", withRoi(R"(,"ror":[{"name":"tree"}])"), refusedRegions},
                      // Regions are checked before any setting is converted.
                      Refusal{"RegionsBeforeSettings", withRoi(R"(,"sensitivity":"high")"), refusedRegions}),
    byName);

// ---- terminate ----------------------------------------------------------------------------------

TEST(Detector, TerminateReleasesEngineAndMaskAndKeepsTheResult) {
  lightMotion detector;
  ASSERT_TRUE(detector.init(documentFor(smallGrey).c_str()));
  Capture err(stderr);
  int length = 0;
  detector.frameProc(frameWith(smallGrey, {}).data(), "1000", &length);
  detector.frameProc(frameWith(smallGrey, {block}).data(), "1040", &length);
  for (int call = 0; call < 2; ++call) {
    detector.terminate();
    EXPECT_EQ(detector.engine, nullptr);
    EXPECT_EQ(detector.fgMaskCopy, nullptr);
    EXPECT_EQ(detector.resText, resultOf(blockBox, "1040"));
    EXPECT_EQ(detector.objList.size(), 1U);
  }
}

TEST(Detector, TerminateOfANewDetectorIsHarmless) {
  lightMotion detector;
  detector.terminate();
  EXPECT_EQ(detector.engine, nullptr);
}

}  // namespace
}  // namespace lm::test
