// Findings on the regions of a configuration document.
#include <gmock/gmock.h>

#include "tests/host/check_findings.h"

namespace {

using namespace lm::host::check;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

const cv::Size kFrame(640, 360);

// Regions as in documents, given the fractions of their corners.
std::string points(const std::vector<std::pair<const char*, const char*>>& corners) {
  std::string text;
  for (const auto& [x, y] : corners) {
    text.append(text.empty() ? R"("points":[{"x":")" : R"(,{"x":")").append(x);
    text.append(R"(","y":")").append(y).append("\"}");
  }
  return text.append(text.empty() ? "\"points\":[]" : "]");
}

std::string rectangle(const char* left, const char* top, const char* right, const char* bottom) {
  return points({{left, top}, {right, top}, {right, bottom}, {left, bottom}});
}

std::string roi(const std::string& region) { return "{\"roi\":[{" + region + "}]}"; }
std::string roi_and_ror(const std::string& region, const std::string& exclusion) {
  return "{\"roi\":[{" + region + "}],\"ror\":[{" + exclusion + "}]}";
}

const std::string kAll =
    rectangle("-1", "0", "1", "1");  // includes column 0, which a left edge at 0 would not

struct Case {
  std::string document;
  const char* place;  // severity, line, column and key of the only finding
  const char* text;   // contained in its text
};

class CheckRegion : public testing::TestWithParam<Case> {};

TEST_P(CheckRegion, IsFoundWithItsPlace) {
  const lm::host::detector::check::Verdict verdict = for_plugin(GetParam().document, kFrame);
  ASSERT_THAT(places_of(verdict), ElementsAre(GetParam().place)) << GetParam().document;
  EXPECT_THAT(verdict.findings[0].text, HasSubstr(GetParam().text));
}

INSTANTIATE_TEST_SUITE_P(
    Lists, CheckRegion,
    testing::Values(Case{R"({"roi": []})", "error 1:9 roi", "contains no region"},
                    Case{R"({"roi": null})", "error 1:9 roi", "contains no region"},
                    Case{R"({"roi": {"name": "a"}})", "error 1:9 roi", "contains no region"},
                    Case{R"({"ror": 7})", "warning 1:9 ror", "7 is not a list of regions"},
                    Case{R"({"roi": [3]})", "error 1:10 roi[0]", "3 is not a region; the plug-in refuses it"},
                    Case{R"({"ror": ["a"]})", "error 1:10 ror[0]", "\"a\" is not a region"},
                    Case{R"({"ror": [{}]})", "warning 1:10 ror[0]", "no list of points"},
                    Case{R"({"ror": [null]})", "warning 1:10 ror[0]", "no list of points"},
                    Case{R"({"ror": [{"points": []}]})", "warning 1:21 ror[0].points", "has 0 points"},
                    Case{R"({"ror": [{"points": [{"x": 0.5, "y": 0}]}]})", "warning 1:21 ror[0].points",
                         "has 1 point"}));

INSTANTIATE_TEST_SUITE_P(
    Points, CheckRegion,
    testing::Values(
        Case{R"({"roi": [{"points": [[0, 1], {"x": 0, "y": 1}, {"x": 1, "y": 0}]}]})",
             "error 1:22 roi[0].points[0]", "[0,1] is not a point"},
        Case{R"({"roi": [{"points": [{"x": "0"}, {"x": 0, "y": 1}, {"x": 1, "y": 0}]}]})",
             "error 1:22 roi[0].points[0]", "\"y\" is missing"},
        Case{R"({"ror": [{"points": [{"y": "a", "x": 0.5}, {"x": 0, "y": 1}, {"x": 1, "y": 0}]}]})",
             "error 1:28 ror[0].points[0].y", "must be a number, not \"a\""},
        Case{R"({"ror": [{"points": [{"x": [], "y": 1}, {"x": 0, "y": 1}, {"x": 1, "y": 0}]}]})",
             "error 1:28 ror[0].points[0].x", "must be a number, not []"},
        Case{R"({"ror": [{"points": [{"x": true, "y": 1}, {"x": 0, "y": 1}, {"x": 1, "y": 0}]}]})",
             "error 1:28 ror[0].points[0].x", "not true"},
        Case{R"({"roi": [{"points": [{"x": "0,5", "y": 1}, {"x": 0, "y": 0}, {"x": 1, "y": 0}]}]})",
             "warning 1:28 roi[0].points[0].x", "\"0,5\" is read as 0"},
        Case{roi(points({{"320", "0"}, {"1", "1"}, {"0", "1"}})), "warning 1:25 roi[0].points[0].x",
             "far outside the frame"},
        Case{roi(points({{"0", "0"}, {"640", "360"}, {"0", "360"}})), "warning 1:43 roi[0].points[1].x",
             "far outside the frame, as are 2 other coordinates of this region"},
        Case{roi(points({{"-0.5", "0"}, {"1", "0"}, {"1", "1"}})), "note 1:25 roi[0].points[0].x",
             "outside the frame; the region is clipped to the frame"},
        // Up to one frame beyond each edge is accepted.
        Case{roi(points({{"2", "0"}, {"1", "1"}, {"0", "1"}})), "note 1:25 roi[0].points[0].x",
             "outside the frame; the region is clipped to the frame"},
        Case{roi(points({{"2.01", "0"}, {"1", "1"}, {"0", "1"}})), "warning 1:25 roi[0].points[0].x",
             "far outside the frame"},
        Case{roi(points({{"-1", "0"}, {"1", "0"}, {"1", "1"}})), "note 1:25 roi[0].points[0].x",
             "outside the frame; the region is clipped to the frame"},
        Case{roi(points({{"-1.01", "0"}, {"1", "0"}, {"1", "1"}})), "warning 1:25 roi[0].points[0].x",
             "far outside the frame"}));

// The rectangle of `kAll` has two coordinates of -1, which cause a note.
INSTANTIATE_TEST_SUITE_P(
    Shapes, CheckRegion,
    testing::Values(
        // A bow tie.
        Case{roi(points({{"0", "0"}, {"1", "1"}, {"1", "0"}, {"0", "1"}})), "warning 1:9 roi[0]",
             "crosses itself, after points 0 and 2"},
        // The closing edge of the outline crosses the one from point 1.
        Case{roi(points({{"0", "0.5"}, {"0.5", "0"}, {"0.5", "1"}, {"1", "0.5"}})), "warning 1:9 roi[0]",
             "crosses itself, after points 1 and 3"},
        Case{roi("\"name\":3," + rectangle("0", "0", "1", "1")), "warning 1:17 roi[0].name",
             "3 is not a string"},
        Case{roi("\"nam\":\"a\"," + rectangle("0", "0", "1", "1")), "warning 1:10 roi[0].nam", "unknown"},
        Case{roi(R"("points":[{"x":"0","y":"0","z":"0"},{"x":"1","y":"0"},{"x":"1","y":"1"}])"),
             "warning 1:37 roi[0].points[0].z", "unknown"}));

std::vector<std::string> without_notes(const lm::host::detector::check::Verdict& verdict) {
  std::vector<std::string> places = places_of(verdict);
  std::erase_if(places, [](const std::string& place) { return place.starts_with("note"); });
  return places;
}

TEST(CheckRegions, AreFineWhenPointsAreGivenAsNumbersOrWithSpareBlanks) {
  EXPECT_THAT(places_of(for_plugin(
                  R"({"roi": [{"comment": "gate", "points": [{"x": 0, "y": " 0 "}, {"x": 1, "y": 0},)"
                  R"( {"x": 1, "y": 1}]}], "ror": []})",
                  kFrame)),
              IsEmpty());
}

TEST(CheckRegions, PointsOfARegionThatHasTooFewAreNotReadUnlessItExcludes) {
  const std::string two = R"("points":[{"x":"a","y":"0"},{"x":"1","y":"0"}])";
  EXPECT_THAT(places_of(for_plugin(roi_and_ror(kAll, two), kFrame)),
              testing::Contains(testing::StartsWith("error")));
  EXPECT_THAT(without_notes(for_plugin("{\"roi\":[{" + kAll + "},{" + two + "}]}", kFrame)),
              ElementsAre(testing::StartsWith("warning")));
}

// The plug-in's edge rule: from column 0.25 x 640 = 160 (outside) to 320 (inside), and from row 90 to row
// 179: 160 x 90 of 640 x 360 pixels.
TEST(CheckRegions, ShareOfTheFrameIsCountedInPixels) {
  const lm::host::detector::check::Verdict verdict =
      for_plugin(roi(rectangle("0.25", "0.25", "0.5", "0.5")), kFrame);
  EXPECT_EQ(verdict.effective->watched, 14400.0 / 230400);
  EXPECT_EQ(verdict.effective->memory, 230400U * 74);  // one more region mask than without regions
}

// Without the right half and without column 0, columns 1 to 320 remain.
TEST(CheckRegions, ExclusionsTakeFromTheShare) {
  const lm::host::detector::check::Verdict verdict =
      for_plugin(roi_and_ror(rectangle("0", "0", "1", "1"), rectangle("0.5", "0", "1", "1")), kFrame);
  EXPECT_THAT(verdict.findings, IsEmpty());
  EXPECT_EQ(verdict.effective->watched, 0.5);
}

TEST(CheckRegions, OneThatIsHiddenByExclusionsIsNamed) {
  const std::string document =
      "{\"roi\":[{" + kAll + "},{\"name\":\"gate\"," + rectangle("0.1", "0.1", "0.3", "0.3") +
      "}],\"ror\":[{" + rectangle("0", "0", "0.2", "1") + "},{" + rectangle("0.2", "0", "0.4", "1") + "}]}";
  const lm::host::detector::check::Finding finding = finding_on(for_plugin(document, kFrame), "roi[1]");
  EXPECT_EQ(finding.severity, lm::check::Severity::warning);
  EXPECT_EQ(finding.text, "region \"gate\" has no effect: exclusion regions cover all of it");
}

// Its columns are 65 to 192 and its rows 36 to 107; the exclusion's columns are 1 to 191.
TEST(CheckRegions, OneVisibleByAPixelIsNotHidden) {
  const std::string document =
      roi_and_ror(rectangle("0.1", "0.1", "0.3", "0.3"), rectangle("0", "0", "0.2999", "1"));
  const lm::host::detector::check::Verdict verdict = for_plugin(document, kFrame);
  EXPECT_THAT(verdict.findings, IsEmpty());
  EXPECT_EQ(verdict.effective->watched, 72.0 / 230400);
}

TEST(CheckRegions, ThatCoverNoPixelAreNamed) {
  const std::string line = points({{"0.1", "0.1"}, {"0.2", "0.1"}, {"0.3", "0.1"}});
  const std::string beside = rectangle("1.1", "0", "1.5", "1");
  for (const std::string& region : {line, beside}) {
    const lm::host::detector::check::Verdict verdict =
        for_plugin("{\"roi\":[{" + kAll + "},{" + region + "}]}", kFrame);
    EXPECT_THAT(finding_on(verdict, "roi[1]").text, HasSubstr("covers no pixel")) << region;
    EXPECT_FALSE(verdict.refused());
    EXPECT_THAT(finding_on(for_plugin(roi_and_ror(kAll, region), kFrame), "ror[0]").text,
                HasSubstr("excludes nothing"));
  }
}

TEST(CheckRegions, AnExclusionWhereNothingIsWatchedIsNoted) {
  const lm::host::detector::check::Verdict verdict =
      for_plugin(roi_and_ror(rectangle("0", "0", "0.5", "1"), rectangle("0.6", "0", "0.8", "1")), kFrame);
  EXPECT_THAT(places_of(verdict), ElementsAre(testing::StartsWith("note 1:")));
  EXPECT_THAT(finding_on(verdict, "ror[0]").text, HasSubstr("overlaps no region of interest"));
}

TEST(CheckRegions, NothingWatchedIsAnError) {
  EXPECT_THAT(finding_on(for_plugin("{\"ror\":[{" + kAll + "}]}", kFrame), "ror").text,
              HasSubstr("nothing is watched"));
  EXPECT_THAT(finding_on(for_plugin(roi(points({{"0", "0"}, {"1", "1"}})), std::nullopt), "roi").text,
              HasSubstr("no region has three points"));
}

// The minimum box is 0.9 of 640 x 360, 576 x 324 pixels; the region has 320 x 180.
TEST(CheckRegions, AMinimumBoxThatNoBoxInThemReachesIsAnError) {
  const std::string sizes = R"("minBoxW":"0.9","minBoxH":"0.9",)";
  const auto verdict_on = [&](const std::string& region) {
    return for_plugin("{" + sizes + "\"roi\":[{" + region + "}]}", kFrame);
  };
  const lm::host::detector::check::Finding finding =
      finding_on(verdict_on(rectangle("0.25", "0.25", "0.75", "0.75")), "minBoxW");
  EXPECT_EQ(finding.severity, lm::check::Severity::error);
  EXPECT_EQ(finding.text,
            "no box can be large enough: the minimum box size is 576 x 324 pixels, the watched area spans "
            "320 x 180 pixels");
  // A box that touches the right border is as wide as the frame, and one side is enough.
  EXPECT_FALSE(verdict_on(rectangle("0.5", "0.25", "1", "0.75")).refused());
}

// The region's 320 x 180 pixels with a margin of one on each side make a largest box of 322 x 182.
TEST(CheckRegions, AMinimumBoxMayBeAsLargeAsTheRegionAndItsMargin) {
  const auto refused = [](const char* width, const char* height) {
    const std::string sizes = std::string(R"({"minBoxW":")") + width + R"(","minBoxH":")" + height + "\",";
    return for_plugin(sizes + "\"roi\":[{" + rectangle("0.25", "0.25", "0.75", "0.75") + "}]}", kFrame)
        .refused();
  };
  EXPECT_FALSE(refused("0.504", "0.9")) << "322.56 pixels wide, rounded down";
  EXPECT_TRUE(refused("0.506", "0.9")) << "323.84";
  EXPECT_FALSE(refused("0.9", "0.506")) << "182.16 pixels high";
  EXPECT_TRUE(refused("0.9", "0.509")) << "183.24";
}

TEST(CheckRegions, AreCheckedBesideRefusedSettings) {
  const std::string line = points({{"0.1", "0.1"}, {"0.2", "0.1"}, {"0.3", "0.1"}});
  const lm::host::detector::check::Verdict verdict =
      for_plugin("{\"lcAdap\":\"x\",\"ror\":[{" + line + "}]}", kFrame);
  EXPECT_THAT(places_of(verdict), ElementsAre("error 1:11 lcAdap", "warning 1:22 ror[0]"));
}

TEST(CheckRegions, AreNotDrawnAtAnUnknownFrameSize) {
  const lm::host::detector::check::Verdict verdict =
      for_plugin(roi(points({{"0", "0"}, {"0.5", "0"}, {"1", "0"}})), std::nullopt);
  EXPECT_THAT(verdict.findings, IsEmpty());
  EXPECT_FALSE(verdict.effective->watched.has_value());
}

TEST(CheckRegions, WithTooManyPointsToDrawAreAccepted) {
  std::string many;
  for (int i = 0; i < 5000; ++i) {
    many.append(i == 0 ? "" : ",")
        .append(R"({"x":0.)")
        .append(std::to_string(1000 + i))
        .append(R"(,"y":0.5})");
  }
  const lm::host::detector::check::Verdict verdict = for_plugin(roi("\"points\":[" + many + "]"), kFrame);
  EXPECT_THAT(finding_on(verdict, "").text, HasSubstr("too many"));
  EXPECT_FALSE(verdict.refused());
}

}  // namespace
