// `lightmotion check` as built.
#include <gmock/gmock.h>
#include <json/json.h>

#include <sstream>

#include "host/detector/presets/presets.h"
#include "tests/host/program.h"

namespace {

using program::Folder;
using program::Outcome;
using testing::ElementsAre;
using testing::HasSubstr;

class CheckProgram : public testing::Test {
 protected:
  Outcome check(const std::string& document, std::vector<std::string> arguments = {}) {
    program::write(file_, document);
    arguments.insert(arguments.begin(), {"check", file_});
    return program::run(arguments);
  }

  const Folder folder_;
  const std::string file_ = folder_ / "c.json";
};

TEST_F(CheckProgram, PrintsTheWorstFirstThenWhatIsInEffectThenASummary) {
  const Outcome outcome =
      check(R"({"sensitivity": "-1", "lcAdap": "9", "minBoxW": "0.02"})", {"--size", "1280x720"});
  EXPECT_EQ(outcome.errors, "");
  EXPECT_EQ(
      outcome.output,
      file_ + ":1:33: warning: \"lcAdap\": 9 is out of range: the values of level 3 are used (1 to 5)\n" +
          file_ +
          ":1:17: note: \"sensitivity\": -1: uses the values of level 5 and adapts the minimum component "
          "size to the video\n"
          "in effect at 1280x720:\n"
          "  matches the background    up to 7 grey levels (thrMatch)\n"
          "  counts as unchanged       up to 10 grey levels (thrHeuris)\n"
          "  lighting change followed  above 10 grey levels (thrIllum)\n"
          "  minimum box size          2 % across, 5 % down: 25 x 36 pixels\n"
          "  still objects kept for    3 seconds, 90 frames at 30 per second\n"
          "  minimum component size    adapts to the video\n"
          "  watched                   100 % of the frame\n"
          "  memory                    67 MB\n" +
          file_ + ": 1 warning, 1 note\n");
}

TEST_F(CheckProgram, EndsWithAStatusForTheWorst) {
  EXPECT_EQ(check("{}").status, 0);
  EXPECT_EQ(check(R"({"sensitivity": "-1"})").status, 0);
  EXPECT_EQ(check(R"({"sensitivity": "9"})").status, 1);
  EXPECT_EQ(check(R"({"sensitivity": "9", "lcAdap": "high"})").status, 2);
  EXPECT_EQ(program::run({"check", folder_ / "none"}).status, 2);
  EXPECT_EQ(check("{}", {"--source", folder_ / "none.mp4"}).status, 2);
}

TEST_F(CheckProgram, ReportsThatThereAreNoFindings) {
  EXPECT_THAT(check("{}").output, HasSubstr(file_ + ": no findings\n"));
}

TEST_F(CheckProgram, NamesFilesThatCannotBeRead) {
  EXPECT_EQ(program::run({"check", folder_ / "none"}).errors,
            "lightmotion: " + (folder_ / "none") + ": No such file or directory\n");
  EXPECT_THAT(check("{}", {"--source", folder_ / "none.mp4"}).errors, HasSubstr("none.mp4"));
}

TEST_F(CheckProgram, TakesTheSizeFromTheSource) {
  const Outcome outcome = check(R"({"frmW": "1280"})", {"--source", ""});  // the built-in scene
  EXPECT_THAT(outcome.output, HasSubstr("c.json:1:10: error: \"frmW\": is 1280 but the frames have 640 "));
}

TEST_F(CheckProgram, RefusesInvalidSizes) {
  for (const char* size : {"640", "x360", "0x0", "0.5", "640x360x3"}) {
    const Outcome outcome = check("{}", {"--size", size});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_THAT(outcome.errors, HasSubstr(std::string("not ") + size));
  }
}

TEST_F(CheckProgram, ReportsWhereATextStopsBeingJson) {
  EXPECT_THAT(check("{\"a\": 1,\n \"b\" 2}").output,
              HasSubstr("c.json:2:6: error: not JSON: Missing ':' after object member name\n"));
}

TEST_F(CheckProgram, PrintsOneObjectForPrograms) {
  const Outcome outcome = check(R"({"sensitivity": "9"})", {"--size", "640x360", "--json"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(program::lines(outcome.output).size(), 1U);
  Json::Value root;
  std::istringstream(outcome.output) >> root;
  ASSERT_EQ(root["findings"].size(), 1U);
  const Json::Value& finding = root["findings"][0];
  EXPECT_THAT(finding.getMemberNames(), ElementsAre("column", "hint", "key", "line", "severity", "text"));
  EXPECT_EQ(finding["severity"], "warning");
  EXPECT_EQ(finding["key"], "sensitivity");
  EXPECT_EQ(finding["line"], 1);
  EXPECT_EQ(finding["column"], 17);
  EXPECT_EQ(finding["hint"], "1 to 5, or -1");
  const Json::Value& effective = root["effective"];
  EXPECT_EQ(effective["match_threshold"], 13);
  EXPECT_EQ(effective["change_threshold"], 12);
  EXPECT_EQ(effective["lighting_threshold"], 5);
  EXPECT_EQ(effective["auto_sensitivity"], false);
  EXPECT_EQ(effective["static_lifetime"].asDouble(), 3);
  EXPECT_EQ(effective["static_lifetime_frames"], 90);
  EXPECT_EQ(effective["min_box"]["width"], 0.05);
  EXPECT_EQ(effective["min_box_pixels"]["height"], 18);
  EXPECT_EQ(effective["frame_size"]["width"], 640);
  EXPECT_EQ(effective["memory"].asUInt64(), 16'848'000U);
  EXPECT_EQ(effective["watched_share"].asDouble(), 1.0);
}

TEST_F(CheckProgram, HasNoEffectiveValuesIfThereIsAnError) {
  Json::Value root;
  std::istringstream(check("[]", {"--json"}).output) >> root;
  EXPECT_EQ(root["findings"][0]["text"], "not a JSON object");
  EXPECT_TRUE(root["effective"].isNull());
}

TEST_F(CheckProgram, FindsNothingInThePresets) {
  for (const lm::host::detector::presets::Preset& preset : lm::host::detector::presets::all())
    EXPECT_EQ(check(preset.document, {"--size", "640x360"}).status, 0) << preset.name;
}

}  // namespace
