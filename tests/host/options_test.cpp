#include "host/commands/command_line.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "host/base/help_format.h"
#include "host/base/number_option.h"
#include "tests/host/program.h"
#include "tests/host/run_line.h"

namespace {

using namespace lm::host::base;
using namespace lm::host::commands;
using namespace lm::host::commands::run;
using program::run_line;

constexpr const char* kCommands[] = {"run", "serve", "tune", "check", "presets"};

std::string refusal(const std::vector<std::string>& arguments) {
  const Command command = parse_command_line(arguments);
  EXPECT_FALSE(command.work);
  EXPECT_EQ(command.status, kRefused);
  EXPECT_EQ(std::count(command.text.begin(), command.text.end(), '\n'), 1) << command.text;
  return command.text;
}

TEST(Options, AreAllEmptyByDefault) {
  const RunOptions options = run_line({});
  EXPECT_EQ(options.source, "");
  EXPECT_EQ(options.config, "");
  EXPECT_EQ(options.results, "");
  EXPECT_EQ(options.annotate, "");
  EXPECT_EQ(options.plugin, "");
  EXPECT_FALSE(options.quiet);
  EXPECT_FALSE(options.verbose);
}

TEST(Options, AreTakenInAnyOrder) {
  const RunOptions options = run_line({"-o", "a.jsonl", "--quiet", "street.avi", "--annotate", "b.mp4",
                                       "--config", "c.json", "--plugin", "d.so", "--verbose"});
  EXPECT_EQ(options.source, "street.avi");
  EXPECT_EQ(options.results, "a.jsonl");
  EXPECT_EQ(options.annotate, "b.mp4");
  EXPECT_EQ(options.config, "c.json");
  EXPECT_EQ(options.plugin, "d.so");
  EXPECT_TRUE(options.quiet);
  EXPECT_TRUE(options.verbose);
}

TEST(Options, TakeNumbers) {
  const RunOptions options =
      run_line({"--fps", "12.5", "--gap", "0", "--min-event=1e1", "--pre", "3", "--post", "4", "--max-gap",
                "0.5", "--timeout", "7", "--reconnect", "0", "--frozen", "90"});
  EXPECT_EQ(options.live.reading.fps, 12.5);
  EXPECT_EQ(options.events.rules.gap, 0);
  EXPECT_EQ(options.events.rules.min_event, 10);
  EXPECT_EQ(options.events.rules.pre, 3);
  EXPECT_EQ(options.events.rules.post, 4);
  EXPECT_EQ(options.live.reading.max_gap, std::chrono::milliseconds(500));
  EXPECT_EQ(options.live.reading.timeout, std::chrono::seconds(7));
  EXPECT_EQ(options.live.reading.patience, std::chrono::microseconds(0));
  EXPECT_EQ(options.live.reading.frozen, std::chrono::seconds(90));
  const auto many = program::archive_line({"a", "b", "--out", "c", "--jobs", "3", "--file-timeout", "1.5"});
  EXPECT_EQ(many.jobs, 3);
  EXPECT_EQ(many.file_timeout, std::chrono::milliseconds(1500));
}

TEST(Options, LimitWhatALiveSourceLeaves) {
  const RunOptions options =
      run_line({"rtsp://a", "-o", "a.jsonl", "--rotate", "day", "--keep", "30d", "--keep-size", "50GB"});
  EXPECT_TRUE(options.storage.rotation.daily);
  EXPECT_EQ(options.storage.keep, std::chrono::days(30));
  EXPECT_EQ(options.storage.keep_size, 50'000'000'000U);
  const auto fault = [](const std::vector<std::string>& words) {
    std::vector<std::string> line{"run", "rtsp://a"};
    line.insert(line.end(), words.begin(), words.end());
    return parse_command_line(line).text;
  };
  EXPECT_NE(fault({"--rotate", "day"}).find("--rotate needs result lines (-o FILE) or --events FILE"),
            std::string::npos);
  EXPECT_NE(
      fault({"-o", "a", "--keep", "1d"}).find("--keep and --keep-size need --clips, --snapshots or --rotate"),
      std::string::npos);
  EXPECT_NE(fault({"--rotate", "hourly"}).find("must be day or a size such as 100MB, not hourly"),
            std::string::npos);
  EXPECT_NE(fault({"--keep", "30"}).find("must be an age such as 30d, 12h or 90min, not 30"),
            std::string::npos);
  EXPECT_NE(fault({"--keep-size", "5"}).find("must be a size such as 50GB or 500MB, not 5"),
            std::string::npos);
  EXPECT_EQ(fault({"--clips", "c", "--keep", "30d"}), "");
}

TEST(Options, HelpNamesEveryOptionAndExitStatus) {
  const Command command = parse_command_line({"run", "--help"});
  EXPECT_EQ(command.status, kDone);
  for (const char* word : {"SOURCE", "--config", "--output", "--annotate", "--plugin", "--quiet", "--verbose",
                           "Exit status:", "130"}) {
    EXPECT_NE(command.text.find(word), std::string::npos) << word;
  }
}

TEST(Options, HelpOfEachCommandHasItsOwnExamplesAndFitsAPage) {
  for (const std::string name : kCommands) {
    const std::string help = parse_command_line({name, "--help"}).text;
    const std::size_t examples = help.find("\nExamples:\n  lightmotion " + name);
    EXPECT_NE(examples, std::string::npos) << help;
    EXPECT_NE(help.find("\nExit status:\n  0 "), std::string::npos) << help;
    for (const std::string& line : program::lines(help)) EXPECT_LE(line.size(), 80U) << line;
  }
}

TEST(Options, HelpStatesRangesAndDefaults) {
  const std::string help = parse_command_line({"run", "--help"}).text;
  EXPECT_NE(
      help.find("Quiet time that ends an event\n" + std::string(28, ' ') + "(0 to 86400 s, default 2)\n"),
      std::string::npos)
      << help;
  for (const char* range : {"(0.001 s or more, default 10)", "(0.001 to 1000,", "default one per"})
    EXPECT_NE(help.find(range), std::string::npos) << range << "\n" << help;
}

TEST(Options, DefaultsAreThoseThatHelpStates) {
  const RunOptions options = run_line({});
  EXPECT_EQ(options.events.rules.min_event, 0.5);
  EXPECT_EQ(options.events.rules.gap, 2);
  EXPECT_EQ(options.events.rules.pre, 2);
  EXPECT_EQ(options.events.rules.post, 2);
  EXPECT_EQ(options.mqtt.discovery, "homeassistant");
  EXPECT_EQ(options.live.reading.max_gap, std::chrono::seconds(10));
  EXPECT_EQ(options.live.reading.timeout, std::chrono::seconds(10));
  EXPECT_FALSE(options.live.reading.patience) << "tries to reconnect forever";
}

TEST(Options, VersionIsOneLine) {
  const Command command = parse_command_line({"--version"});
  EXPECT_EQ(command.status, kDone);
  EXPECT_TRUE(command.text.starts_with("lightmotion "));
  EXPECT_EQ(command.text.find('\n'), command.text.size() - 1);
}

TEST(Options, RefuseWhatIsUnknownOrIncomplete) {
  EXPECT_EQ(refusal({"run", "--nope"}), "lightmotion: unknown option --nope (see lightmotion run --help)\n");
  EXPECT_EQ(refusal({"--nope"}), "lightmotion: unknown option --nope (see lightmotion --help)\n");
  EXPECT_EQ(refusal({"tune", "a.avi", "b.avi"}),
            "lightmotion: unexpected argument b.avi (see lightmotion tune --help)\n");
  EXPECT_EQ(refusal({"run", "-o"}), "lightmotion: --output: FILE missing (see lightmotion run --help)\n");
  EXPECT_EQ(refusal({"run", "--preset", "street", "-c", "a"}),
            "lightmotion: --config cannot be combined with --preset (see lightmotion run --help)\n");
  EXPECT_NE(refusal({"run", "a.avi", "b.avi"}).find("b.avi"), std::string::npos);
}

TEST(Options, NameAMissingOrUnknownCommand) {
  EXPECT_EQ(refusal({}), "lightmotion: no command given (see lightmotion --help)\n");
  EXPECT_EQ(refusal({"walk"}), "lightmotion: unknown command \"walk\" (see lightmotion --help)\n");
}

TEST(Options, ProposeToRunASourceThatIsGivenAsCommand) {
  const program::Folder folder;
  const std::string file = folder / "a.mp4";
  program::write(file, "");
  for (const std::string& source : {file, std::string("rtsp://camera/main")}) {
    const std::string text = refusal({source});
    EXPECT_NE(text.find("did you mean \"lightmotion run " + source + "\"?"), std::string::npos) << text;
  }
}

TEST(Options, RefuseAVideoFormatThatCannotKeepTimes) {
  EXPECT_NE(refusal({"run", "-a", "out.avi"}).find("must end in .mp4, .mkv or .mov, not out.avi"),
            std::string::npos);
}

struct NumberCase {
  std::vector<std::string> arguments;
  const char* cause;
};

TEST(Options, RefuseTextAndValuesOutOfRangeWhereANumberIsExpected) {
  const NumberCase cases[] = {
      {{"run", "--gap", "soon"}, "--gap: must be a number, not soon"},
      {{"run", "--gap", "5s"}, "--gap: must be a number, not 5s"},
      {{"run", "--gap", ""}, "--gap: must be a number, not "},
      {{"run", "--gap", "nan"}, "--gap: must be 0 to 86400 s, not nan"},
      {{"run", "--gap", "86400.5"}, "--gap: must be 0 to 86400 s, not 86400.5"},
      {{"run", "--gap=-1"}, "--gap: must be 0 to 86400 s, not -1"},
      {{"run", "--fps", "0"}, "--fps: must be 0.001 to 1000, not 0"},
      {{"run", "a", "--out", "b", "--jobs", "1.5"}, "--jobs: must be a whole number, not 1.5"},
      {{"run", "a", "--out", "b", "--jobs", "0"}, "--jobs: must be 1 to 4096, not 0"},
      {{"serve", "--port", "http"}, "--port: must be a whole number, not http"},
      {{"serve", "--port", "65536"}, "--port: must be 0 to 65535, not 65536"},
      {{"tune", "--seconds", "0.5"}, "--seconds: must be 1 to 86400 s, not 0.5"}};
  for (const NumberCase& test : cases) {
    const std::string text = refusal(test.arguments);
    EXPECT_NE(text.find(one_line(test.cause) + " (see"), std::string::npos) << text;
  }
}

TEST(NumberRange, IsShownWithoutAnUnreachableLimit) {
  EXPECT_EQ(range_text({0, 86400, "s"}), "0 to 86400 s");
  EXPECT_EQ(range_text({0.001, 1e9, "s"}), "0.001 s or more");
  EXPECT_EQ(range_text({1, 4096, "", true}), "1 to 4096");
}

TEST(Help, IsWrappedBetweenWords) {
  EXPECT_EQ(wrapped("one two three", 7), "one two\nthree");
  EXPECT_EQ(wrapped("one two three", 6), "one\ntwo\nthree");
  EXPECT_EQ(wrapped("one\ntwo three", 20), "one\ntwo three");
  EXPECT_EQ(wrapped("longer than this", 4), "longer\nthan\nthis");
  EXPECT_EQ(wrapped("", 4), "");
  EXPECT_EQ(wrapped("one (two three) four", 12), "one\n(two three)\nfour") << "parentheses stay together";
  EXPECT_EQ(wrapped("one (two three)", 7), "one\n(two\nthree)") << "unless they are too long";
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
  EXPECT_EQ(run_line({"--snapshots", "a", "--clips", "a"}).report.clips, "a")
      << "pictures and videos have different endings";
}

TEST(Options, KnowAFileUnderItsOtherName) {
  const program::Folder folder;
  program::write(folder / "a.mp4", "");
  std::filesystem::create_symlink(folder / "a.mp4", folder / "b.mp4");
  EXPECT_NE(refusal({"run", folder / "a.mp4", "-a", folder / "b.mp4"}).find("overwrite the source"),
            std::string::npos);
}

TEST(ResultLines, GoToATerminalOnlyWhenNothingElseWasAskedFor) {
  EXPECT_TRUE(prints_lines(run_line({}), true));
  EXPECT_TRUE(prints_lines(run_line({"-v", "--fps", "5", "a.mp4"}), true));
  const std::vector<std::string> others[] = {
      {"--report", "a.html"}, {"--events", "a.csv"},   {"--heatmap", "a.png"}, {"--clips", "a"},
      {"--snapshots", "a"},   {"--annotate", "a.mp4"}, {"--explain", "1-2"},   {"--mqtt", "mqtt://a"}};
  for (std::vector<std::string> other : others) {
    EXPECT_FALSE(prints_lines(run_line(other), true)) << other[0];
    EXPECT_TRUE(prints_lines(run_line(other), false)) << other[0];
    other.insert(other.end(), {"-o", "-"});
    EXPECT_TRUE(prints_lines(run_line(other), true)) << other[0];
  }
}

TEST(ResultLines, GoToTheFileThatIsNamed) {
  for (const bool terminal : {false, true}) {
    EXPECT_FALSE(prints_lines(run_line({"-o", "a.jsonl"}), terminal));
    EXPECT_TRUE(prints_lines(run_line({"-o", "-"}), terminal));
  }
}

TEST(ResultLines, OfManyFilesHaveNoCommonOutput) {
  EXPECT_NE(
      refusal({"run", "a", "--out", "b", "-o", "-"}).find("--output with --out must be a plain file name"),
      std::string::npos);
}

}  // namespace
