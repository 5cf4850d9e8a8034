#include "host/options.h"

#include <gtest/gtest.h>

#include "tests/host/program.h"

namespace {

using namespace lm::host;

std::string refusal(const std::vector<std::string>& arguments) {
  const Command command = parse_command_line(arguments);
  EXPECT_FALSE(command.options);
  EXPECT_EQ(command.status, kRefused);
  EXPECT_EQ(std::count(command.text.begin(), command.text.end(), '\n'), 1) << command.text;
  return command.text;
}

TEST(Options, AreAllEmptyByDefault) {
  const Command command = parse_command_line({"run"});
  ASSERT_TRUE(command.options);
  EXPECT_EQ(command.options->source, "");
  EXPECT_EQ(command.options->config, "");
  EXPECT_EQ(command.options->results, "");
  EXPECT_EQ(command.options->annotate, "");
  EXPECT_EQ(command.options->plugin, "");
  EXPECT_FALSE(command.options->quiet);
  EXPECT_FALSE(command.options->verbose);
}

TEST(Options, AreTakenInAnyOrder) {
  const Command command =
      parse_command_line({"run", "-o", "a.jsonl", "--quiet", "street.avi", "--annotate", "b.mp4", "--config",
                          "c.json", "--plugin", "d.so", "--verbose"});
  ASSERT_TRUE(command.options);
  EXPECT_EQ(command.options->source, "street.avi");
  EXPECT_EQ(command.options->results, "a.jsonl");
  EXPECT_EQ(command.options->annotate, "b.mp4");
  EXPECT_EQ(command.options->config, "c.json");
  EXPECT_EQ(command.options->plugin, "d.so");
  EXPECT_TRUE(command.options->quiet);
  EXPECT_TRUE(command.options->verbose);
}

TEST(Options, HelpNamesEveryOptionAndExitStatus) {
  const Command command = parse_command_line({"run", "--help"});
  EXPECT_EQ(command.status, kDone);
  for (const char* word : {"SOURCE", "--config", "--output", "--annotate", "--plugin", "--quiet", "--verbose",
                           "Exit status: 0", "130"}) {
    EXPECT_NE(command.text.find(word), std::string::npos) << word;
  }
}

TEST(Options, VersionIsOneLine) {
  const Command command = parse_command_line({"--version"});
  EXPECT_EQ(command.status, kDone);
  EXPECT_TRUE(command.text.starts_with("lightmotion "));
  EXPECT_EQ(command.text.find('\n'), command.text.size() - 1);
}

TEST(Options, RefuseWhatIsUnknownOrIncomplete) {
  EXPECT_NE(refusal({"run", "--nope"}).find("--nope"), std::string::npos);
  EXPECT_NE(refusal({"run", "-o"}).find("-o"), std::string::npos);
  EXPECT_NE(refusal({"run", "a.avi", "b.avi"}).find("b.avi"), std::string::npos);
  refusal({});
  refusal({"walk"});
}

TEST(Options, RefuseAVideoFormatThatCannotKeepTimes) {
  EXPECT_NE(refusal({"run", "-a", "out.avi"}).find("must end in .mp4, .mkv or .mov, not out.avi"),
            std::string::npos);
}

TEST(Options, RefuseOutputsThatWouldReplaceAnInputOrEachOther) {
  EXPECT_NE(refusal({"run", "a.mp4", "-a", "./a.mp4"}).find("--annotate would overwrite the source"),
            std::string::npos);
  EXPECT_NE(refusal({"run", "-c", "a.json", "-o", "a.json"}).find("-o would overwrite the configuration"),
            std::string::npos);
  EXPECT_NE(refusal({"run", "-o", "a.mp4", "-a", "a.mp4"}).find("name the same file"), std::string::npos);
}

TEST(Options, RefuseFoldersOnTheNamesOfFiles) {
  for (const char* option : {"--snapshots", "--clips"}) {
    const std::string named = option;
    EXPECT_NE(refusal({"run", "a.mp4", option, "a.mp4/"}).find(named + " needs a folder, not the source"),
              std::string::npos);
    EXPECT_NE(
        refusal({"run", "-c", "a.json", option, "a.json"}).find("needs a folder, not the configuration"),
        std::string::npos);
    EXPECT_NE(refusal({"run", "--events", "a.json", option, "./a.json/"})
                  .find("--events and " + named + " name the same file"),
              std::string::npos);
  }
  EXPECT_TRUE(parse_command_line({"run", "--snapshots", "a", "--clips", "a"}).options)
      << "pictures and videos have different endings";
}

TEST(Options, KnowAFileUnderItsOtherName) {
  const program::Folder folder;
  program::write(folder / "a.mp4", "");
  std::filesystem::create_symlink(folder / "a.mp4", folder / "b.mp4");
  EXPECT_NE(refusal({"run", folder / "a.mp4", "-a", folder / "b.mp4"}).find("overwrite the source"),
            std::string::npos);
}

}  // namespace
