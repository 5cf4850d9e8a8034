// Findings for detectors by handle, as the program uses them.
#include <gmock/gmock.h>

#include <cmath>

#include "tests/host/check_findings.h"

namespace {

using namespace lm::host::check;
using lm::host::detector::check::check_document;
using lm::host::detector::check::Verdict;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

const cv::Size kFrame(640, 360);

TEST(CheckHandle, ReadsNumbersAsNumbers) {
  const Verdict verdict = check_document(R"({"sensitivity": 4, "lcAdap": 2, "minBoxW": 0.1})", kFrame);
  EXPECT_THAT(places_of(verdict), IsEmpty());
  EXPECT_EQ(verdict.effective->thr_match, 9);
  EXPECT_EQ(verdict.effective->thr_illum, 15);
  EXPECT_EQ(verdict.effective->min_box_pixels.width, 64);
}

TEST(CheckHandle, KnowsTheKeysOfHandles) {
  const Verdict verdict = check_document(R"({"absorb_seconds": 60, "extent": "full", "peel": 1})", kFrame);
  EXPECT_THAT(places_of(verdict), IsEmpty());
  EXPECT_EQ(verdict.effective->life_static_seconds, 60);
  EXPECT_EQ(verdict.effective->life_static, 1800) << "at 30 per second";
  EXPECT_EQ(verdict.effective->extent, "full");
  EXPECT_EQ(verdict.effective->peeled, 1);
  EXPECT_TRUE(
      std::isinf(check_document(R"({"absorb_seconds": "forever"})", kFrame).effective->life_static_seconds));
}

TEST(CheckHandle, ReportsTheirFaultsWithTheirPosition) {
  const Verdict verdict = check_document(R"({"absorb_seconds": 0, "extent": "whole", "peel": 4})", kFrame);
  EXPECT_THAT(places_of(verdict),
              ElementsAre("error 1:20 absorb_seconds", "error 1:33 extent", "error 1:50 peel"));
  EXPECT_TRUE(verdict.refused());
}

TEST(CheckHandle, CompletesWhatAdapts) {
  const Verdict verdict = check_document(R"({"adapt": true})", kFrame);
  EXPECT_THAT(places_of(verdict), IsEmpty());
  EXPECT_THAT(verdict.effective->adapts, ElementsAre("sensitivity", "peel"));
  EXPECT_EQ(verdict.effective->thr_match, 9) << "of sensitivity 4, the start";
  EXPECT_EQ(verdict.effective->life_static_seconds, 60) << "of the preset auto";
  EXPECT_THAT(check_document(R"({"adapt": true, "peel": 1})", kFrame).effective->adapts,
              ElementsAre("sensitivity"));
  const Verdict constant = check_document(R"({"adapt": false})", kFrame);
  EXPECT_THAT(constant.effective->adapts, IsEmpty());
  EXPECT_EQ(constant.effective->life_static_seconds, 3);
}

TEST(CheckHandle, AdaptIsTrueOrFalse) {
  for (const char* wrong : {R"({"adapt": "true"})", R"({"adapt": 1})", R"({"adapt": []})"}) {
    const Verdict verdict = check_document(wrong, kFrame);
    EXPECT_THAT(places_of(verdict), ElementsAre("error 1:11 adapt")) << wrong;
    EXPECT_FALSE(verdict.effective) << wrong;
  }
  EXPECT_THAT(places_of(check_document(R"({"adapt": null})", kFrame)), IsEmpty());
}

TEST(CheckHandle, ThePluginDoesNotAdapt) {
  EXPECT_THAT(places_of(for_plugin(R"({"adapt": true})", kFrame)), ElementsAre("warning 1:2 adapt"));
  EXPECT_THAT(places_of(for_plugin(R"({"adapt": false})", kFrame)), IsEmpty());
}

TEST(CheckHandle, KeysOfHandlesHaveNoEffectForThePlugin) {
  const Verdict verdict = for_plugin(R"({"peel": 1})", kFrame);
  ASSERT_THAT(places_of(verdict), ElementsAre("warning 1:2 peel"));
  EXPECT_THAT(verdict.findings[0].hint, HasSubstr("only detectors by handle"));
}

TEST(CheckHandle, ChecksSizesAgainstTheSource) {
  EXPECT_THAT(places_of(check_document(R"({"frmW": 641})", kFrame)), ElementsAre("error 1:10 frmW"));
  EXPECT_THAT(places_of(check_document(R"({"format": "nv12"})", kFrame)), ElementsAre("error 1:12 format"));
  EXPECT_THAT(places_of(check_document(R"({"frmChn": "1"})", kFrame)), ElementsAre("error 1:12 frmChn"));
  EXPECT_THAT(places_of(check_document(R"({"frmW": 640, "frmH": "360", "frmChn": 3})", kFrame)), IsEmpty());
}

// A region below the frame covers nothing, whatever the size; how much others cover depends on it.
TEST(CheckHandle, WithoutASizeChecksWhatDoesNotDependOnIt) {
  const char* const below =
      R"({"roi": [{"points": [{"x": 0, "y": 1.5}, {"x": 1, "y": 1.5}, {"x": 1, "y": 1.9}]}]})";
  EXPECT_FALSE(check_document(below, std::nullopt).refused());
  EXPECT_TRUE(check_document(below, kFrame).refused());
  EXPECT_TRUE(check_document(R"({"roi": []})", std::nullopt).refused());
  const Verdict verdict = check_document("{}", std::nullopt);
  EXPECT_THAT(places_of(verdict), IsEmpty());
  EXPECT_TRUE(verdict.effective->frame.empty());
  EXPECT_FALSE(verdict.effective->watched);
  EXPECT_EQ(check_document(R"({"frmW": 320, "frmH": 240})", std::nullopt).effective->frame,
            cv::Size(320, 240));
}

TEST(CheckHandle, CountsTheMemoryOfRegionsAsBits) {
  const char* const whole =
      R"({"roi": [{"points": [{"x": -1, "y": 0}, {"x": 1, "y": 0}, {"x": 1, "y": 1}, {"x": -1, "y": 1}]}]})";
  const std::uint64_t pixels = 640 * 360;
  EXPECT_EQ(check_document("{}", kFrame).effective->memory, 73 * pixels + pixels / 8);
  EXPECT_EQ(check_document(whole, kFrame).effective->memory, 73 * pixels + 2 * pixels / 8);
}

}  // namespace
