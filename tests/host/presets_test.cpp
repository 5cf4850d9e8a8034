#include "host/detector/presets/presets.h"

#include <gmock/gmock.h>
#include <json/json.h>

#include <set>
#include <sstream>

#include "host/commands/command_line.h"
#include "host/detector/adapt.h"
#include "host/detector/check/check.h"
#include "host/detector/document.h"
#include "tests/host/program.h"
#include "tests/host/run_line.h"

namespace {

using namespace lm::host::base;
using namespace lm::host::commands;
using namespace lm::host::detector;
using namespace lm::host::detector::presets;
using program::Folder;

Json::Value parsed(const std::string& text) {
  Json::Value value;
  std::istringstream(text) >> value;
  return value;
}

TEST(Presets, HaveUniqueNamesAndALineEach) {
  std::set<std::string> names;
  for (const Preset& preset : all()) {
    names.insert(preset.name);
    EXPECT_FALSE(preset.about.empty()) << preset.name;
    EXPECT_EQ(preset.about.find('\n'), std::string::npos) << preset.name;
    EXPECT_EQ(find_preset(preset.name), &preset);
  }
  EXPECT_EQ(names.size(), all().size());
  for (const char* name : {"auto", "calm", "street"}) EXPECT_EQ(names.count(name), 1U) << name;
  EXPECT_EQ(find_preset("nowhere"), nullptr);
}

TEST(Presets, HaveNoFindingsAndNoUnknownKeys) {
  for (const Preset& preset : all()) {
    EXPECT_TRUE(check::check_document(preset.document, cv::Size(640, 360)).findings.empty()) << preset.name;
  }
}

// Constant settings, which the entry points read: texts.
TEST(Presets, StreetIsForPluginsAndTheOthersAdapt) {
  for (const Preset& preset : all())
    EXPECT_EQ(adapts(preset.document), preset.name != "street") << preset.name;
  const Json::Value street = parsed(find_preset("street")->document);
  const std::vector<std::string> keys{"comment", "lcAdap", "minBoxH", "minBoxW", "sensitivity"};
  EXPECT_EQ(street.getMemberNames(), keys);
  for (const std::string& key : keys) EXPECT_TRUE(street[key].isString()) << key;
}

// The plug-in accepts 1 to 5 for both levels, and minimum box sizes above 0 up to 1.
TEST(Presets, StayInTheRangesThatThePluginAccepts) {
  for (const Preset& preset : all()) {
    const Json::Value root = parsed(preset.document);
    for (const char* key : {"sensitivity", "lcAdap"}) {
      if (!root.isMember(key)) continue;
      const int level = std::stoi(root[key].asString());
      EXPECT_TRUE(level >= 1 && level <= 5) << preset.name << ' ' << key;
    }
    for (const char* key : {"minBoxW", "minBoxH"}) {
      const double share = std::stod(root[key].asString());
      EXPECT_TRUE(share > 0 && share <= 1) << preset.name << ' ' << key;
    }
  }
}

TEST(Presets, AutoRunsWithoutAConfigurationAndStreetInAPlugin) {
  EXPECT_EQ(default_document("").text, find_preset("auto")->document);
  EXPECT_EQ(default_document("other.so").text, find_preset("street")->document);
}

TEST(Presets, AreNamedOnTheCommandLine) {
  EXPECT_EQ(program::run_line({"--preset", "street"}).preset, "street");
}

TEST(Presets, ThatAreUnknownAreRefusedWithThoseThereAre) {
  const Command command = parse_command_line({"run", "--preset", "nigth"});
  EXPECT_EQ(command.status, kRefused);
  EXPECT_NE(command.text.find("auto, calm, street, not nigth"), std::string::npos) << command.text;
}

TEST(Presets, AndAConfigurationExcludeEachOther) {
  const Command command = parse_command_line({"run", "--preset", "street", "--config", "own.json"});
  EXPECT_EQ(command.status, kRefused);
  EXPECT_NE(command.text.find("--preset"), std::string::npos) << command.text;
}

TEST(PresetsProgram, ListsNamesAndLines) {
  const program::Outcome outcome = program::run({"presets"});
  EXPECT_EQ(outcome.status, 0);
  const auto lines = program::lines(outcome.output);
  ASSERT_EQ(lines.size(), all().size());
  for (std::size_t i = 0; i < lines.size(); ++i) {
    EXPECT_TRUE(lines[i].starts_with(all()[i].name + " ")) << lines[i];
    EXPECT_TRUE(lines[i].ends_with(" " + all()[i].about)) << lines[i];
  }
}

TEST(PresetsProgram, PrintsADocumentAsItIs) {
  const program::Outcome outcome = program::run({"presets", "street"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.output, find_preset("street")->document);
}

TEST(PresetsProgram, RunsWithADocumentAsIfItWereAConfiguration) {
  const Folder folder;
  program::write(folder / "own.json", find_preset("street")->document);
  const std::vector<std::string> common{"run",     "--quiet", "--plugin", LIGHTMOTION_PLUGIN,
                                        "--scale", "0.5",     "--fps",    "5"};
  auto with = [&](std::vector<std::string> more) {
    more.insert(more.begin(), common.begin(), common.end());
    return program::run(more);
  };
  const program::Outcome named = with({"--preset", "street"});
  const program::Outcome given = with({"--config", folder / "own.json"});
  EXPECT_EQ(named.status, 0) << named.errors;
  EXPECT_FALSE(named.output.empty());
  EXPECT_EQ(named.output, given.output);
  EXPECT_EQ(named.output, with({}).output) << "what a plug-in runs without a configuration";
}

TEST(PresetsProgram, AutoSavedAndEditedKeepsAdapting) {
  const Folder folder;
  program::write(folder / "own.json", find_preset("auto")->document);
  const program::Outcome without = program::run({"run", "--scale", "0.5", "-o", folder / "a"});
  const program::Outcome with =
      program::run({"run", "--scale", "0.5", "-o", folder / "b", "-c", folder / "own.json"});
  EXPECT_EQ(with.status, 0) << with.errors;
  EXPECT_FALSE(program::read(folder / "a").empty());
  EXPECT_EQ(program::read(folder / "a"), program::read(folder / "b"));
  EXPECT_THAT(with.errors, testing::HasSubstr("analysed in 320x180"));
  program::write(folder / "own.json", R"({"adapt": true, "sensitivity": 2})");
  const program::Outcome edited =
      program::run({"run", "--scale", "0.5", "-o", folder / "b", "-c", folder / "own.json"});
  EXPECT_THAT(edited.errors, testing::HasSubstr("analysed in 320x180"));
  EXPECT_THAT(edited.errors, testing::Not(testing::HasSubstr("sensitivity")));
}

TEST(PresetsProgram, AutoNeedsTheLibrary) {
  const program::Outcome outcome = program::run_fake({"--preset", "auto"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_THAT(outcome.errors, testing::HasSubstr("the preset auto: \"adapt\" cannot be used with --plugin"));
}

TEST(PresetsArchive, AffectWhichFilesAreReprocessed) {
  const auto options = program::archive_line({"a.avi", "--out", "results", "--preset", "street"});
  EXPECT_EQ(options.passed_on, std::vector<std::string>{"--preset=street"});
}

}  // namespace
