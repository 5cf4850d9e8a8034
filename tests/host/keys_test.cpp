// One vocabulary: compares the keys of host/base/keys.h, of docs/results.md, and of every command's output.
#include "host/base/keys.h"

#include <gmock/gmock.h>
#include <json/json.h>

#include <filesystem>
#include <regex>
#include <set>

#include "host/base/json_text.h"
#include "tests/host/clips.h"
#include "tests/host/program.h"
#include "tests/host/schemas.h"

namespace {

using namespace lm::host::base;
using namespace std::chrono_literals;
using program::Folder;
using program::Outcome;
using Lines = std::vector<std::string>;

TEST(Keys, AreSnakeCaseAndUnique) {
  std::set<std::string_view> names;
  for (const Key& key : keys()) {
    EXPECT_TRUE(std::regex_match(std::string(key.name), std::regex("[a-z]+(_[a-z]+)*"))) << key.name;
    EXPECT_TRUE(names.insert(key.name).second) << key.name;
  }
}

// Rows such as "| `time` | 3 | seconds since the first frame | lines, serve |".
TEST(Keys, AreInTheTableOfTheDocumentationInOrder) {
  const std::string page = program::read(LIGHTMOTION_SCHEMAS "/../results.md");
  const std::string table = page.substr(page.find("\n## Keys\n"));
  Lines documented;
  const std::regex row("\n\\| `([a-z_]+)` \\| ([0-9]|–) \\|");
  for (std::sregex_iterator at(table.begin(), table.end(), row), end; at != end; ++at)
    documented.push_back((*at)[1].str() + " " + (*at)[2].str());
  Lines written;
  for (const Key& key : keys()) {
    const std::string decimals = key.decimals > 0 ? std::to_string(key.decimals) : "–";
    written.push_back(std::string(key.name) + " " + decimals);
  }
  EXPECT_EQ(documented, written);
}

TEST(JsonText, HasMembersInTheirOrderAndNumbersWithTheirDecimals) {
  Json::Value value;
  value["zebra"] = 1.5;  // not a key of the program
  value["height"] = 2.0 / 3;
  value["width"] = 640;
  value["time"] = 1.0005;
  value["frame"] = 7;
  value["activity"][0][0] = 3;
  value["activity"][0][1] = 0.5;
  value["note"] = "a\n\"b\"";
  EXPECT_EQ(json_text(value), R"({"frame":7,"time":1.000,"width":640,"height":0.666667,"note":"a\n\"b\"",)"
                              R"("activity":[[3,0.500000]],"zebra":1.500000})");
  EXPECT_EQ(json_text(0.1, "fps"), "0.1");
  EXPECT_EQ(json_text(1e300, "fps").size(), 303U) << "301 digits, the point, a tenth";
  EXPECT_EQ(json_text(std::numeric_limits<double>::infinity(), "fps"), "null");
}

TEST(JsonText, LeavesAConfigurationAsItIs) {
  Json::Value value;
  value["configuration"]["x"] = 0.25;
  value["configuration"]["time"] = 7;
  value["configuration"]["frame"] = "1";
  EXPECT_EQ(json_text(value), R"({"configuration":{"frame":"1","time":7,"x":0.25}})");
}

// The schemas of the commands' output, and all keys in them.
class Written : public testing::Test {
 protected:
  void SetUp() override {
    if (!schemas::available()) GTEST_SKIP() << "needs python3-jsonschema";
  }

  const Folder folder_;
};

Lines first_lines(const std::string& text) {
  Lines lines = program::lines(text);
  std::erase_if(lines, [](const std::string& line) { return !line.starts_with('{'); });
  return lines;
}

TEST_F(Written, ByRun) {
  const Outcome outcome = program::run({"run", "--plugin", LIGHTMOTION_PLUGIN, "--progress", "json", "-o",
                                        folder_ / "o", "--events", folder_ / "e.json"});
  ASSERT_EQ(outcome.status, 0) << outcome.errors;
  EXPECT_EQ(schemas::fault("result-line", program::lines(program::read(folder_ / "o"))), "");
  EXPECT_EQ(schemas::fault("events", {program::read(folder_ / "e.json")}), "");
  EXPECT_EQ(schemas::fault("progress", first_lines(outcome.errors)), "");
  const Outcome again = program::run(
      {"run", "--plugin", LIGHTMOTION_PLUGIN, "-q", "-o", folder_ / "o", "--events", folder_ / "e.jsonl"});
  ASSERT_EQ(again.status, 0) << again.errors;
  const Lines events = program::lines(program::read(folder_ / "e.jsonl"));
  EXPECT_EQ(schemas::fault("events", events, "event"), "");
  // The document has the same lines, with commas between them.
  for (const std::string& event : events)
    EXPECT_NE(program::read(folder_ / "e.json").find("\n" + event), std::string::npos) << event;
}

TEST_F(Written, ByRunOverAGap) {
  clips::write(folder_ / "a.mkv", {64, 48}, {0ms, 40ms, 80ms, 20s, 20040ms});
  const Outcome outcome = program::run_fake({folder_ / "a.mkv", "--max-gap", "1"});
  EXPECT_NE(outcome.output.find("\"note\""), std::string::npos) << outcome.output;
  EXPECT_EQ(schemas::fault("result-line", program::lines(outcome.output)), "");
}

TEST_F(Written, ByRunOverAnArchive) {
  clips::write(folder_ / "in.mp4", {64, 48}, clips::regular(20, 40ms));
  const Outcome outcome =
      program::run_fake({folder_ / "in.mp4", "--out", folder_ / "out", "--progress", "json", "--quiet"});
  ASSERT_EQ(outcome.status, 0) << outcome.errors;
  EXPECT_EQ(schemas::fault("progress", first_lines(outcome.errors)), "");
  Lines records;
  for (const auto& entry : std::filesystem::directory_iterator(folder_ / "out")) {
    if (entry.is_directory() && entry.path().filename().string()[0] != '.')
      records.push_back(program::read(entry.path() / "run.json"));
  }
  EXPECT_EQ(records.size(), 1U);
  EXPECT_EQ(schemas::fault("run-record", records), "");
}

TEST_F(Written, ByCheck) {
  program::write(folder_ / "good.json", R"({"sensitivity": "9"})");
  program::write(folder_ / "bad.json", "{");
  Lines texts;
  for (const Lines& arguments : {Lines{"good.json"}, {"good.json", "--size", "640x360"}, {"bad.json"}}) {
    Lines all{"check", folder_ / arguments[0], "--json"};
    all.insert(all.end(), arguments.begin() + 1, arguments.end());
    texts.push_back(program::run(all).output);
  }
  EXPECT_EQ(schemas::fault("check", texts), "");
}

TEST_F(Written, ByTune) {
  const Outcome outcome = program::run(
      {"tune", "--json", "--seconds", "6", "--scale", "0.25", "--fps", "5", "--plugin", LIGHTMOTION_PLUGIN});
  ASSERT_EQ(outcome.status, 0) << outcome.errors;
  EXPECT_EQ(schemas::fault("tune", {outcome.output}), "");
}

TEST_F(Written, RejectsOtherKeys) {
  EXPECT_NE(schemas::fault("events", {R"({"format": "lightmotion-events", "version": 2})"}), "");
  EXPECT_NE(schemas::fault("result-line", {R"({"frame": 1, "time": 0.04, "note": "a", "inRoi": []})"}), "");
  EXPECT_NE(
      schemas::fault("result-line", {R"({"frame": 1, "time": 0.04, "timestamp": "41", "boxes":)"
                                     R"([{"x": 0.9, "y": 0, "width": 1.1, "height": 1, "regions": []}]})"}),
      "")
      << "not clipped";
}

}  // namespace
