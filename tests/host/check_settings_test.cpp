// Findings on the plain settings of a configuration document, for the plug-in by its entry points.
#include <gmock/gmock.h>

#include "config/check/findings.h"
#include "host/detector/check/effect.h"
#include "tests/host/check_findings.h"

namespace {

using namespace lm::host::check;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

const cv::Size kFrame(640, 360);

struct Case {
  const char* document;
  const char* place;  // severity, line, column and key of the only finding
  const char* text;   // contained in its text
  const char* hint;   // contained in its hint
};

class CheckSetting : public testing::TestWithParam<Case> {};

TEST_P(CheckSetting, IsReportedWithItsPositionAndAValidValue) {
  const lm::host::detector::check::Verdict verdict = for_plugin(GetParam().document, kFrame);
  ASSERT_THAT(places_of(verdict), ElementsAre(GetParam().place)) << GetParam().document;
  EXPECT_THAT(verdict.findings[0].text, HasSubstr(GetParam().text));
  EXPECT_THAT(verdict.findings[0].hint, HasSubstr(GetParam().hint));
}

INSTANTIATE_TEST_SUITE_P(
    Keys, CheckSetting,
    testing::Values(Case{R"({"sensitivty": "5"})", "warning 1:2 sensitivty", "unknown", "\"sensitivity\"?"},
                    Case{R"({"LCADAP": "5"})", "warning 1:2 LCADAP", "unknown", "\"lcAdap\"?"},
                    Case{R"({"colour": "5"})", "warning 1:2 colour", "unknown", "known keys: frmW, frmH"},
                    Case{R"({"MIN_MATCH_NUM": "3"})", "warning 1:2 MIN_MATCH_NUM", "unknown",
                         "parameter list only"},
                    Case{R"({"maxBoxW": "0.5"})", "warning 1:2 maxBoxW", "never uses it", "remove it"},
                    Case{"{\"lcAdap\": \"2\",\n  \"lcAdap\": \"3\"}", "warning 2:3 lcAdap",
                         "twice; the one in line 1 is ignored", "keep one"}));

INSTANTIATE_TEST_SUITE_P(
    Kinds, CheckSetting,
    testing::Values(
        Case{R"({"sensitivity": 5})", "warning 1:17 sensitivity", "5 is not a string", "write \"5\""},
        Case{R"({"minBoxW": 0.25})", "warning 1:13 minBoxW", "0.25 is not a string", "\"0.25\""},
        Case{R"({"lcAdap": null})", "warning 1:12 lcAdap", "null is not a string", "quotation marks"},
        Case{R"({"maxBoxH": 1})", "warning 1:13 maxBoxH", "1 is not a string", "\"1\""},
        Case{R"({"sensitivity": "high"})", "error 1:17 sensitivity", "must be a whole number, not \"high\"",
             "1 to 5, or -1"},
        Case{R"({"lcAdap": "99999999999"})", "error 1:12 lcAdap", "not \"99999999999\"", "1 to 5"},
        Case{R"({"minBoxH": "wide"})", "error 1:13 minBoxH", "must be a number, not \"wide\"",
             "above 0, at most 1"},
        Case{R"({"minBoxH": "1e99"})", "error 1:13 minBoxH", "not \"1e99\"", "at most 1"}));

INSTANTIATE_TEST_SUITE_P(
    Values, CheckSetting,
    testing::Values(
        Case{R"({"sensitivity": "5abc"})", "warning 1:17 sensitivity", "\"5abc\" is read as 5", "number"},
        Case{R"({"sensitivity": "2.9"})", "warning 1:17 sensitivity", "\"2.9\" is read as 2", "number"},
        Case{R"({"minBoxW": "0.1 of it"})", "warning 1:13 minBoxW", "is read as 0.1", "number"},
        Case{R"({"sensitivity": "9"})", "warning 1:17 sensitivity",
             "9 is out of range: the values of level 3", "1 to 5, or -1"},
        Case{R"({"lcAdap": "0"})", "warning 1:12 lcAdap", "0 is out of range: the values of level 3",
             "1 to 5"},
        Case{R"({"lifeStatic": "5"})", "warning 1:16 lifeStatic", "5 is out of range: 3 seconds are kept",
             "remove it"},
        Case{R"({"lifeStatic": "0"})", "warning 1:16 lifeStatic", "background at once", "remove it"},
        Case{R"({"lifeStatic": "-1"})", "error 1:16 lifeStatic", "nothing is ever detected", "remove it"},
        Case{R"({"minBoxW": "1.5"})", "warning 1:13 minBoxW", "1.5 is out of range: 0.05 is kept",
             "at most 1"},
        Case{R"({"minBoxH": "nan"})", "warning 1:13 minBoxH", "nan is out of range", "at most 1"},
        Case{R"({"sensitivity": "-1"})", "note 1:17 sensitivity", "adapts", ""},
        // The program inserts "frmChn", which is 3, at the start.
        Case{R"({"sensitivity": ""})", "warning 1:17 sensitivity", "reuses \"3\" from \"frmChn\"", "value"},
        Case{R"({"lcAdap": " \t", "sensitivity": "4"})", "warning 1:12 lcAdap",
             "reuses \"4\" from \"sensitivity\"", "value"}));

INSTANTIATE_TEST_SUITE_P(
    Sizes, CheckSetting,
    testing::Values(
        Case{R"({"frmW": "641"})", "error 1:10 frmW", "is 641 but the source's frames have 640", "remove it"},
        Case{R"({"frmH": 361})", "error 1:10 frmH", "is 361 but the source's frames have 360", "remove it"},
        Case{R"({"frmChn": "1"})", "error 1:12 frmChn", "is 1 but the source's frames have 3", "remove it"},
        Case{R"({"frmW": "wide"})", "error 1:10 frmW", "must be a whole number, not \"wide\"", ""},
        Case{R"({"frmW": ""})", "error 1:10 frmW", "must be a whole number, not \"\"", ""},
        Case{R"({"frmW": 12345678901})", "error 1:10 frmW", "not 12345678901", ""},
        Case{R"({"frmW": "0"})", "error 1:10 frmW", "\"0\" is refused", "1 or more"},
        Case{R"({"frmW": 640})", "note 1:10 frmW", "converts 640", "\"640\""},
        Case{R"({"frmW": null})", "warning 1:10 frmW", "null is ignored", "remove it"},
        Case{R"({"frmW": "640px"})", "warning 1:10 frmW", "\"640px\" is read as 640", "number"}));

// 0.0015 of 640 is 0.96 of a pixel, 0.0027 of 360 is 0.972.
INSTANTIATE_TEST_SUITE_P(MinimumBoxes, CheckSetting,
                         testing::Values(Case{R"({"minBoxW": "0.0015"})", "warning 1:13 minBoxW",
                                              "less than a pixel", "remove both"},
                                         Case{R"({"minBoxH": "0.0027"})", "warning 1:13 minBoxH",
                                              "less than a pixel", "remove both"}));

TEST(CheckSettings, HaveNoFindingsWhenValid) {
  for (const char* document : {R"({"sensitivity": "5", "lcAdap": "1", "minBoxW": "1", "minBoxH": ".5"})",
                               R"({"frmW": "640", "frmH": " 360", "frmChn": "3"})",
                               R"({"minBoxW": "0.0016", "minBoxH": "0.0028"})",  // 1.024 and 1.008 pixels
                               "/* by hand */ {\"comment\": [\"street\", 3]} // end"}) {
    EXPECT_THAT(places_of(for_plugin(document, kFrame)), IsEmpty()) << document;
  }
}

TEST(CheckSettings, FindsEveryFaultInTheOrderOfTheText) {
  const lm::host::detector::check::Verdict verdict = for_plugin(
      "{\n"
      "  \"lifeStatic\": \"5\",\n"
      "  \"minBoxW\": \"wide\",\n"
      "  \"sensitivity\": \"high\"\n"
      "}",
      kFrame);
  EXPECT_THAT(places_of(verdict),
              ElementsAre("warning 2:17 lifeStatic", "error 3:14 minBoxW", "error 4:18 sensitivity"));
  EXPECT_TRUE(verdict.refused());
  EXPECT_FALSE(verdict.effective.has_value());
}

// The empty "minBoxW" reuses the 4 of "lcAdap", which is out of its range.
TEST(CheckSettings, ReusedValuesAreChecked) {
  const lm::host::detector::check::Verdict verdict = for_plugin(R"({"lcAdap": "4", "minBoxW": ""})", kFrame);
  ASSERT_THAT(places_of(verdict), ElementsAre("warning 1:28 minBoxW", "warning 1:28 minBoxW"));
  EXPECT_THAT(verdict.findings[1].text, HasSubstr("4 is out of range: 0.05 is kept"));
}

TEST(CheckSettings, ThatAreEmptyInARowReuseTheSameValue) {
  const lm::host::detector::check::Verdict verdict =
      for_plugin(R"({"sensitivity": "1", "lcAdap": "", "minBoxW": ""})", kFrame);
  EXPECT_THAT(finding_on(verdict, "minBoxW").text, HasSubstr("reuses \"1\" from \"sensitivity\""));
}

TEST(CheckSettings, HaveTheEffectiveValuesOfTheirTables) {
  const lm::host::detector::check::Verdict verdict =
      for_plugin(R"({"sensitivity": "4", "lcAdap": "2", "minBoxW": "0.1", "minBoxH": "0.25"})", kFrame);
  ASSERT_TRUE(verdict.effective.has_value());
  const lm::host::detector::check::Effective& effective = *verdict.effective;
  EXPECT_EQ(effective.thr_match, 9);
  EXPECT_EQ(effective.thr_heuris, 11);
  EXPECT_EQ(effective.thr_illum, 15);
  EXPECT_FALSE(effective.auto_sensitivity);
  EXPECT_EQ(effective.life_static_seconds, 3);
  EXPECT_EQ(effective.life_static, 90);
  EXPECT_NEAR(effective.min_box_width, 0.1, 1e-6);
  EXPECT_NEAR(effective.min_box_height, 0.25, 1e-6);
  EXPECT_EQ(effective.frame, kFrame);
  EXPECT_EQ(effective.min_box_pixels, cv::Size(64, 90));
  EXPECT_EQ(effective.memory, 16'819'200U);  // 230400 pixels of 73 bytes
  EXPECT_EQ(effective.watched, 1.0);
}

TEST(CheckSettings, OutOfRangeTakeLevelThree) {
  const lm::host::detector::check::Effective effective =
      *for_plugin(R"({"sensitivity": "9", "lcAdap": "9"})", kFrame).effective;
  EXPECT_EQ(effective.thr_match, 13);
  EXPECT_EQ(effective.thr_heuris, 12);
  EXPECT_EQ(effective.thr_illum, 10);
}

TEST(CheckSettings, OmittedHaveTheDefaultsOfThePlugin) {
  const lm::host::detector::check::Effective effective = *for_plugin("{}", std::nullopt).effective;
  EXPECT_EQ(effective.thr_match, 20);
  EXPECT_EQ(effective.thr_heuris, 10);
  EXPECT_EQ(effective.thr_illum, 5);
  EXPECT_NEAR(effective.min_box_width, 0.05, 1e-6);
  EXPECT_TRUE(effective.frame.empty());
  EXPECT_FALSE(effective.watched.has_value());
}

TEST(CheckSettings, TheSizeIsThatOfTheDocumentWhereThereIsNoSource) {
  const lm::host::detector::check::Verdict verdict =
      for_plugin(R"({"frmW": "800", "frmH": "600"})", std::nullopt);
  EXPECT_EQ(verdict.effective->frame, cv::Size(800, 600));
  EXPECT_TRUE(for_plugin(R"({"frmW": "800"})", std::nullopt).effective->frame.empty());
}

TEST(CheckSettings, FourChannelsAreAWarningWithoutASourceAndTwoAnError) {
  EXPECT_THAT(places_of(for_plugin(R"({"frmChn": "4"})", std::nullopt)), ElementsAre("warning 1:12 frmChn"));
  EXPECT_THAT(places_of(for_plugin(R"({"frmChn": "2"})", std::nullopt)), ElementsAre("error 1:12 frmChn"));
}

// 26755 x 26755 x 3 = 2147490075, just above 2147483647; 26754 x 26754 x 3 = 2147329548, which probably
// exceeds this computer's memory.
TEST(CheckSettings, FramesOfMoreBytesThanThePluginCountsAreRefused) {
  EXPECT_EQ(finding_on(for_plugin("{}", cv::Size(26755, 26755)), "").severity, lm::check::Severity::error);
  EXPECT_FALSE(for_plugin("{}", cv::Size(26754, 26754)).refused());
  EXPECT_EQ(finding_on(for_plugin(R"({"frmW": "2147483647", "frmH": "2147483647"})", std::nullopt), "frmW")
                .severity,
            lm::check::Severity::error);
}

TEST(CheckSettings, MoreMemoryThanTheComputerHasIsAWarning) {
  lm::host::detector::check::Effective effective;
  effective.frame = kFrame;
  effective.memory = 12'000'000'001;
  lm::check::Findings enough("{}");
  lm::host::detector::check::check_memory(effective, 12'000'000'001, enough);
  lm::host::detector::check::check_memory(effective, 0, enough);  // unknown
  EXPECT_THAT(enough.inOrder(), IsEmpty());
  lm::check::Findings short_of("{}");
  lm::host::detector::check::check_memory(effective, 8'000'000'000, short_of);
  ASSERT_EQ(short_of.inOrder().size(), 1U);
  EXPECT_EQ(short_of.inOrder()[0].severity, lm::check::Severity::warning);
  EXPECT_EQ(short_of.inOrder()[0].text,
            "the detector needs 12 GB for frames of 640 x 360 pixels; this computer has 8000 MB");
}

}  // namespace
