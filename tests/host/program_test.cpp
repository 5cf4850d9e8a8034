// The built program, with a plug-in whose behaviour the tests control.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <json/json.h>
#include <pty.h>
#include <unistd.h>

#include <csignal>
#include <sstream>

#include "tests/host/clips.h"
#include "tests/host/program.h"

namespace {

using namespace std::chrono_literals;
using program::Folder;
using program::Outcome;
using program::run_fake;
using Names = std::vector<std::string>;

Json::Value parsed(const std::string& line) {
  Json::Value value;
  std::istringstream(line) >> value;
  return value;
}

// The only line on standard error, which must start with the program's name.
std::string error_line(const Outcome& outcome) {
  EXPECT_EQ(program::lines(outcome.errors).size(), 1U) << outcome.errors;
  EXPECT_TRUE(outcome.errors.starts_with("lightmotion: ")) << outcome.errors;
  return outcome.errors;
}

// A video of 20 frames in which the fake plug-in finds boxes on 18: on all but the first and the eleventh.
std::string short_clip(const Folder& folder) {
  static const std::string bytes = [] {
    const Folder own;
    clips::write(own / "a.mp4", {64, 48}, clips::regular(20, 40ms));
    return program::read(own / "a.mp4");
  }();
  program::write(folder / "clip", bytes);
  return folder / "clip";
}

TEST(Program, PassesTimesCountedFromOneAndReportsFramesCountedFromZero) {
  const Folder folder;
  clips::write(folder / "a.mp4", {64, 48}, {0ms, 40ms, 113ms, 2s});
  const Outcome outcome = run_fake({folder / "a.mp4"});
  EXPECT_EQ(outcome.status, 0);
  const auto lines = program::lines(outcome.output);
  ASSERT_EQ(lines.size(), 3U) << "the fake plug-in sees nothing in the first frame";
  EXPECT_TRUE(lines[0].starts_with("{\"frame\":1,\"time\":0.040,"));
  EXPECT_TRUE(lines[1].starts_with("{\"frame\":2,\"time\":0.113,"));
  EXPECT_TRUE(lines[2].starts_with("{\"frame\":3,\"time\":2.000,"));
  EXPECT_EQ(parsed(lines[0])["timestamp"], Json::Value("41"));
  EXPECT_EQ(parsed(lines[1])["timestamp"], Json::Value("114"));
  EXPECT_EQ(parsed(lines[2])["timestamp"], Json::Value("2001"));
}

TEST(Program, RoundsBoxesAndNamesTheirRegions) {
  const Folder folder;
  const Outcome outcome = run_fake({short_clip(folder)});
  EXPECT_EQ(program::lines(outcome.output).at(0),
            "{\"frame\":1,\"time\":0.040,\"boxes\":[{\"x\":0.500000,\"y\":0.250000,\"width\":0.100000,"
            "\"height\":0.300000,\"regions\":[\"frame\"]}],\"timestamp\":\"41\"}");
}

TEST(Program, ClipsBoxesToTheFrame) {
  const Folder folder;
  program::write(folder / "c.json", R"({"comment": "border"})");
  const Outcome outcome = run_fake({short_clip(folder), "-c", folder / "c.json"});
  const Json::Value box = parsed(program::lines(outcome.output).at(0))["boxes"][0];
  EXPECT_EQ(box["x"].asDouble(), 0.9);
  EXPECT_EQ(box["width"].asDouble(), 0.1) << "of 1";
  EXPECT_EQ(box["y"].asDouble(), 0.75);
  EXPECT_EQ(box["height"].asDouble(), 0.25) << "of 0.3";
}

TEST(Program, CompletesTheConfigurationFromTheSource) {
  const Folder folder;
  clips::write(folder / "a.mp4", {64, 48}, clips::regular(2, 40ms));
  program::write(folder / "c.json", R"({"sensitivity": "2"})");
  setenv("LIGHTMOTION_FAKE_CONFIGURATION", (folder / "seen.json").c_str(), 1);
  const Outcome outcome = run_fake({folder / "a.mp4", "--config", folder / "c.json"});
  unsetenv("LIGHTMOTION_FAKE_CONFIGURATION");
  const Json::Value config = parsed(program::read(folder / "seen.json"));
  EXPECT_EQ(config["frmW"], Json::Value("64"));
  EXPECT_EQ(config["frmH"], Json::Value("48"));
  EXPECT_EQ(config["frmChn"], Json::Value("3"));
  EXPECT_EQ(config["sensitivity"], Json::Value("2"));
  EXPECT_EQ(config["roi"].size(), 1U);
  EXPECT_FALSE(config.isMember("minBoxW")) << "a document of one's own is not mixed with the default";
}

TEST(Program, WritesLinesAndVideoUnderTheirNamesWhenComplete) {
  const Folder folder;
  const Outcome outcome = run_fake({short_clip(folder), "-o", folder / "a.jsonl", "-a", folder / "a.mp4"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.output, "");
  EXPECT_EQ(folder.names(), (Names{"a.jsonl", "a.mp4", "clip"}));
  EXPECT_EQ(program::lines(program::read(folder / "a.jsonl")).size(), 18U);
}

TEST(Program, AnnotatesEveryFrameAtItsTime) {
  const Folder folder;
  const clips::Times times{0ms, 40ms, 113ms, 2s, 2001ms};
  clips::write(folder / "a.mp4", {160, 120}, times);
  ASSERT_EQ(run_fake({folder / "a.mp4", "-a", folder / "b.mp4"}).status, 0);
  const auto frames = clips::read(folder / "b.mp4");
  EXPECT_EQ(clips::times_of(frames), times);
  // The fake box: columns 80 to 96, rows 30 to 66. Its border is bright green; the first frame has none.
  const auto green = [&](std::size_t i) { return frames[i].image.at<cv::Vec3b>(30, 88)[1]; };
  EXPECT_LT(green(0), 130);
  EXPECT_GT(green(3), 160);
}

TEST(Program, GivesTheSameBytesTwice) {
  const Folder folder;
  const std::string clip = short_clip(folder);
  ASSERT_EQ(run_fake({clip, "-o", folder / "1.jsonl", "-a", folder / "1.mp4"}).status, 0);
  ASSERT_EQ(run_fake({clip, "-o", folder / "2.jsonl", "-a", folder / "2.mp4"}).status, 0);
  EXPECT_EQ(program::read(folder / "1.jsonl"), program::read(folder / "2.jsonl"));
  EXPECT_TRUE(program::read(folder / "1.mp4") == program::read(folder / "2.mp4"));
}

TEST(Program, SumsUpOnStandardErrorUnlessQuiet) {
  const Outcome outcome = run_fake({"-o", "/dev/null"});
  EXPECT_NE(outcome.errors.find("built-in scene: 500 frames, 20.0 s of video in "), std::string::npos)
      << outcome.errors;
  EXPECT_NE(outcome.errors.find("motion in 450 frames, 1 event, listed in /dev/null"), std::string::npos);
  EXPECT_EQ(outcome.errors.find('\r'), std::string::npos) << "no progress bar without a terminal";
  const Folder folder;
  EXPECT_EQ(run_fake({short_clip(folder), "-o", "/dev/null", "--quiet"}).errors, "");
  const std::string table = folder / "a.csv";
  const Outcome listed = run_fake({short_clip(folder), "--events", table});
  EXPECT_TRUE(listed.errors.ends_with("motion in 18 frames, 1 event\nevents: " + table + "\n"))
      << listed.errors;
}

TEST(Program, ShowsAProgressBarOnATerminalAndClearsIt) {
  int terminal = -1;
  int other = -1;
  const winsize size{24, 80, 0, 0};
  ASSERT_EQ(openpty(&terminal, &other, nullptr, nullptr, &size), 0);
  setenv("TERM", "xterm", 1);
  const int nowhere = open("/dev/null", O_WRONLY);
  const pid_t process = program::start({"run", "--plugin", LIGHTMOTION_FAKE_PLUGIN}, nowhere, other);
  close(other);
  std::string shown;
  char piece[512];
  for (ssize_t length = 0; (length = ::read(terminal, piece, sizeof piece)) > 0;)
    shown.append(piece, piece + length);
  EXPECT_EQ(program::wait_for(process), 0);
  close(terminal);
  close(nowhere);
  EXPECT_TRUE(shown.starts_with("\r0% [---")) << shown;
  EXPECT_NE(shown.find("\r\x1b[Kbuilt-in scene: 500 frames"), std::string::npos) << shown;
}

// The program's standard output on a terminal.
std::string shown_on_a_terminal(std::vector<std::string> arguments) {
  int terminal = -1;
  int other = -1;
  EXPECT_EQ(openpty(&terminal, &other, nullptr, nullptr, nullptr), 0);
  const int nowhere = open("/dev/null", O_WRONLY);
  arguments.insert(arguments.begin(), {"run", "--plugin", LIGHTMOTION_FAKE_PLUGIN});
  const pid_t process = program::start(arguments, other, nowhere);
  close(other);
  std::string shown;
  char piece[512];
  for (ssize_t length = 0; (length = ::read(terminal, piece, sizeof piece)) > 0;)
    shown.append(piece, piece + length);
  EXPECT_EQ(program::wait_for(process), 0);
  close(terminal);
  close(nowhere);
  return shown;
}

TEST(Program, KeepsResultLinesOffATerminalThatHasOtherOutputs) {
  const Folder folder;
  const std::string clip = short_clip(folder);
  EXPECT_EQ(program::lines(shown_on_a_terminal({clip})).size(), 18U);
  EXPECT_EQ(shown_on_a_terminal({clip, "--events", folder / "a.csv"}), "");
  EXPECT_EQ(program::lines(shown_on_a_terminal({clip, "--events", folder / "a.csv", "-o", "-"})).size(), 18U);
  const Outcome piped = run_fake({clip, "--events", folder / "a.csv"});
  EXPECT_EQ(program::lines(piped.output).size(), 18U) << "a pipe has them";
}

struct RefusedCase {
  const char* name;
  const char* document;
  const char* cause;
};

class Refused : public testing::TestWithParam<RefusedCase> {};

TEST_P(Refused, ConfigurationGivesOneLineAndStatusTwo) {
  const Folder folder;
  program::write(folder / "c.json", GetParam().document);
  const Outcome outcome = run_fake({"-c", folder / "c.json", "-o", folder / "out"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(error_line(outcome), "lightmotion: " + (folder / "c.json") + ":" + GetParam().cause + "\n");
  EXPECT_EQ(outcome.output, "");
  EXPECT_EQ(folder.names(), Names{"c.json"});
}

INSTANTIATE_TEST_SUITE_P(
    All, Refused,
    testing::Values(
        RefusedCase{"NotJson", "{", "1:2: not JSON: Missing '}' or object member name"},
        RefusedCase{"NoObject", "[]", " not a JSON object"},
        RefusedCase{"OtherSize", R"({"frmW": "1"})",
                    "1:10: \"frmW\": is 1 but the frames have 640 (remove it to use that of the frames)"},
        RefusedCase{
            "Faulty", R"({"comment": "throw", "sensitivity": "high"})",
            "1:37: \"sensitivity\": must be a whole number, not \"high\"; the detector refuses it (1 to 5, or "
            "-1)"},
        RefusedCase{"FaultyTwice", R"({"lcAdap": "x", "roi": []})",
                    "1:12: \"lcAdap\": must be a whole number, not \"x\"; the detector refuses it (1 to 5); "
                    "and 1 more "
                    "(lightmotion check lists all)"},
        RefusedCase{
            "Useless", R"({"ror": [], "lifeStatic": "-1"})",
            "1:27: \"lifeStatic\": -1 makes everything background at once: nothing is ever detected (remove "
            "it for the default of 3 seconds)"},
        RefusedCase{"Refusing", R"({"comment": "refuse"})",
                    " the plug-in refuses it: Error: this document is refused"},
        RefusedCase{"Throwing", R"({"comment": "throw"})", " the plug-in refuses it: exception \"stoi\""}),
    [](const auto& refused) { return std::string(refused.param.name); });

TEST(Program, NamesAConfigurationThatCannotBeRead) {
  const Folder folder;
  const Outcome outcome = run_fake({"-c", folder / "none.json"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(error_line(outcome), "lightmotion: " + (folder / "none.json") + ": No such file or directory\n");
}

TEST(Program, WarnsOfSettingsThatHaveNoEffect) {
  const Folder folder;
  program::write(folder / "c.json", R"({"sensitivty": 5})");
  const Outcome outcome =
      run_fake({short_clip(folder), "-c", folder / "c.json", "-o", "/dev/null", "--quiet"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(error_line(outcome),
            "lightmotion: warning: " + (folder / "c.json") +
                ":1:2: \"sensitivty\": unknown key, ignored (did you mean \"sensitivity\"?)\n");
}

TEST(Program, KeepsThePluginsChatterOutOfTheResults) {
  const Folder folder;
  program::write(folder / "c.json", R"({"comment": "chatter"})");
  const Outcome outcome = run_fake({short_clip(folder), "-c", folder / "c.json", "--quiet"});
  EXPECT_TRUE(outcome.output.starts_with("{\"frame\":1,")) << outcome.output.substr(0, 80);
  EXPECT_EQ(outcome.errors, "");
}

TEST(Program, ShowsThePluginsLogWhenVerbose) {
  const Folder folder;
  program::write(folder / "c.json", R"({"comment": "log"})");
  const std::string line = "lightmotion: plug-in: automatic sensitivity\n";
  EXPECT_NE(
      run_fake({short_clip(folder), "-c", folder / "c.json", "-o", "/dev/null", "-v"}).errors.find(line),
      std::string::npos);
  EXPECT_EQ(run_fake({short_clip(folder), "-c", folder / "c.json", "-o", "/dev/null"}).errors.find(line),
            std::string::npos);
}

TEST(Program, EndsWithStatusTwoWithoutAPlugin) {
  const Outcome outcome = program::run({"run", "--plugin", "/nowhere/plugin.so"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_NE(error_line(outcome).find("/nowhere/plugin.so"), std::string::npos);
}

TEST(Program, EndsWithStatusOneWithoutASource) {
  const Outcome outcome = run_fake({"/nowhere/street.avi"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(error_line(outcome), "lightmotion: /nowhere/street.avi: No such file or directory\n");
}

TEST(Program, CompletesItsOutputsForASourceThatBreaksOffAndEndsWithStatusOne) {
  const Folder folder;
  clips::write(folder / "a.mkv", {64, 48}, clips::regular(100, 40ms));
  std::filesystem::resize_file(folder / "a.mkv", std::filesystem::file_size(folder / "a.mkv") / 2);
  const Outcome outcome =
      run_fake({folder / "a.mkv", "-o", folder / "b.jsonl", "-a", folder / "b.mp4", "--quiet"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_NE(error_line(outcome).find(folder / "a.mkv"), std::string::npos);
  EXPECT_EQ(folder.names(), (Names{"a.mkv", "b.jsonl", "b.mp4"}));
  EXPECT_GT(clips::read(folder / "b.mp4").size(), 5U);
}

TEST(Program, RemovesItsOutputsWhenThePluginFailsOnAFrame) {
  const Folder folder;
  program::write(folder / "c.json", R"({"comment": "frame throws"})");
  const Outcome outcome =
      run_fake({"-c", folder / "c.json", "-o", folder / "a.jsonl", "-a", folder / "a.mp4"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_NE(error_line(outcome).find("exception \"stoll\" while processing a frame"), std::string::npos);
  EXPECT_EQ(folder.names(), Names{"c.json"});
}

TEST(Program, LeavesNoPartialFileOnAFullDevice) {
  const Folder folder;
  const std::string cause = " cannot be written: File too large\n";
  Outcome outcome = run_fake({"-o", folder / "a.jsonl"}, 5000);
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(error_line(outcome), "lightmotion: " + (folder / "a.jsonl") + cause);
  // 18 lines fit, the video does not; then the file of lines does not get its name either.
  clips::write_busy(folder / "clip.mp4", {160, 120}, 20);
  outcome = run_fake({folder / "clip.mp4", "-o", folder / "a.jsonl", "-a", folder / "a.mp4"}, 9000);
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(error_line(outcome), "lightmotion: " + (folder / "a.mp4") + cause);
  EXPECT_EQ(folder.names(), Names{"clip.mp4"});
}

TEST(Program, ReportsThatItsResultsCannotBeWritten) {
  const Folder folder;
  const Outcome outcome = run_fake({"-o", "/dev/full", "-a", folder / "a.mp4"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(error_line(outcome), "lightmotion: /dev/full cannot be written: No space left on device\n");
  EXPECT_EQ(folder.names(), Names{});
}

// A program whose standard output is a pipe from which one line has been read. The fake plug-in's lines fill
// the pipe long before the end of the built-in scene, so the program is still running then.
class Piped : public testing::Test {
 protected:
  void SetUp() override {
    int ends[2];
    ASSERT_EQ(pipe2(ends, O_CLOEXEC), 0);
    output_ = ends[0];
    errors_ = open((folder_ / "errors").c_str(), O_CREAT | O_RDWR | O_CLOEXEC, 0600);
    process_ = program::start({"run", "--plugin", LIGHTMOTION_FAKE_PLUGIN, "-a", folder_ / "a.mp4"}, ends[1],
                              errors_);
    close(ends[1]);
    for (char c = 0; ::read(output_, &c, 1) == 1 && c != '\n';) {
    }
  }

  void TearDown() override { close(errors_); }

  void read_rest() {
    char piece[4096];
    while (::read(output_, piece, sizeof piece) > 0) {
    }
    close(output_);
  }

  Folder folder_;
  int output_ = -1;
  int errors_ = -1;
  pid_t process_ = 0;
};

TEST_F(Piped, CtrlCCompletesTheOutputs) {
  kill(process_, SIGINT);
  read_rest();
  EXPECT_EQ(program::wait_for(process_), 130);
  EXPECT_EQ(folder_.names(), (Names{"a.mp4", "errors"}));
  const std::size_t frames = clips::read(folder_ / "a.mp4").size();
  EXPECT_GT(frames, 0U);
  EXPECT_LT(frames, 500U);
}

TEST_F(Piped, TerminationDoesTheSame) {
  kill(process_, SIGTERM);
  read_rest();
  EXPECT_EQ(program::wait_for(process_), 143);
  EXPECT_EQ(folder_.names(), (Names{"a.mp4", "errors"}));
}

TEST_F(Piped, AReaderThatLeavesIsAWriteError) {
  close(output_);
  EXPECT_EQ(program::wait_for(process_), 1);
  EXPECT_EQ(program::read(folder_ / "errors"),
            "lightmotion: standard output cannot be written: Broken pipe\n");
  EXPECT_EQ(folder_.names(), Names{"errors"});
}

}  // namespace
