// Findings on the lines of a configuration document.
#include <gmock/gmock.h>

#include "tests/host/check_findings.h"

namespace {

using namespace lm::host::check;
using lm::host::detector::check::check_document;
using testing::ElementsAre;
using testing::HasSubstr;

struct Case {
  const char* document;
  const char* place;  // severity, line, column and key of the only finding
  const char* text;   // contained in its text
};

class CheckLine : public testing::TestWithParam<Case> {};

TEST_P(CheckLine, IsFoundWithItsPlace) {
  const auto verdict = check_document(GetParam().document, std::nullopt);
  ASSERT_THAT(places_of(verdict), ElementsAre(GetParam().place)) << GetParam().document;
  EXPECT_THAT(verdict.findings[0].text, HasSubstr(GetParam().text));
}

INSTANTIATE_TEST_SUITE_P(
    All, CheckLine,
    testing::Values(Case{R"({"lines": 7})", "error 1:11 lines", "7 is not a list of lines"},
                    Case{R"({"lines": [7]})", "error 1:12 lines[0]", "7 is not a line"},
                    Case{R"({"lines": [{}]})", "error 1:12 lines[0]", "no list of points"},
                    Case{R"({"lines": [{"points": [{"x": "0", "y": "0"}]}]})", "error 1:12 lines[0]",
                         "has 1 point, but a line has two"},
                    Case{R"({"lines": [{"points": [1, {"x": "0", "y": "0"}]}]})",
                         "error 1:24 lines[0].points[0]", "1 is not a point"},
                    Case{R"({"lines": [{"points": [{"x": "a", "y": "0"}, {"x": "0", "y": "0"}]}]})",
                         "error 1:30 lines[0].points[0].x", "must be a number, not \"a\""},
                    Case{R"({"lines": [{"points": [{"x": "0"}, {"x": "0", "y": "0"}]}]})",
                         "error 1:24 lines[0].points[0]", "\"y\" is missing"},
                    Case{R"({"lines": [{"points": [{"x": "1", "y": "0"}, {"x": 1.0, "y": 0}]}]})",
                         "error 1:23 lines[0].points", "the same"},
                    Case{R"({"lines": [{"points": [{"x": 320, "y": 0}, {"x": 0, "y": 0}]}]})",
                         "warning 1:30 lines[0].points[0].x", "far outside"},
                    Case{
                        R"({"lines": [{"direction": "up", "points": [{"x": 1, "y": 0}, {"x": 0, "y": 0}]}]})",
                        "error 1:26 lines[0].direction", "\"up\" is not a direction"},
                    Case{R"({"lines": [{"name": 1, "points": [{"x": 1, "y": 0}, {"x": 0, "y": 0}]}]})",
                         "warning 1:21 lines[0].name", "the line has no name"}));

}  // namespace
