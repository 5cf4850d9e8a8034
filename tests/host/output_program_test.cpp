// All outputs when they cannot be written and when the program is stopped; progress for programs.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <json/json.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <cstring>
#include <filesystem>
#include <sstream>

#include "tests/host/clips.h"
#include "tests/host/program.h"

namespace {

using namespace std::chrono_literals;
using program::Folder;
using program::Outcome;
using program::run_fake;
using Names = std::vector<std::string>;

struct Output {
  const char* option;
  const char* file;
};

constexpr Output kOutputs[] = {{"--output", "a.jsonl"}, {"--events", "a.json"}, {"--events", "a.csv"},
                               {"--annotate", "a.mp4"}, {"--heatmap", "a.png"}, {"--report", "a.html"}};

class EachOutput : public testing::TestWithParam<Output> {
 protected:
  // 40 frames of 40 ms, in which the fake plug-in produces an event.
  EachOutput() { clips::write(folder_ / "clip.mp4", {64, 48}, clips::regular(40, 40ms)); }

  // With another output, which could be written.
  Outcome run_with(const std::string& file) const {
    const bool table = GetParam().option == std::string("--events");
    return run_fake({folder_ / "clip.mp4", "--quiet", GetParam().option, file,
                     table ? "--output" : "--events", folder_ / "other.json"});
  }

  static void expect_complaint(const Outcome& outcome, const std::string& beginning) {
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(program::lines(outcome.errors).size(), 1U) << outcome.errors;
    EXPECT_TRUE(outcome.errors.starts_with("lightmotion: " + beginning)) << outcome.errors;
  }

  Folder folder_;
};

TEST_P(EachOutput, OnAFullDeviceGivesOneLineAndNoFile) {
  const std::string link = folder_ / GetParam().file;
  std::filesystem::create_symlink("/dev/full", link);
  expect_complaint(run_with(link), link + " cannot be written: No space left on device");
  EXPECT_EQ(folder_.names(), (Names{GetParam().file, "clip.mp4"}));
}

TEST_P(EachOutput, InAnUnwritableFolderGivesOneLineAndNoFile) {
  const std::string closed = folder_ / "closed";
  std::filesystem::create_directory(closed);
  chmod(closed.c_str(), 0500);
  // Root can write there nevertheless.
  const std::string file = (access(closed.c_str(), W_OK) == 0 ? "/sys" : closed) + "/" + GetParam().file;
  expect_complaint(run_with(file), file + " cannot be written: ");
  EXPECT_EQ(folder_.names(), (Names{"clip.mp4", "closed"}));
}

TEST_P(EachOutput, ThatExistedStaysAsItWasWhenTheRunFails) {
  const std::string file = folder_ / GetParam().file;
  program::write(file, "old");
  program::write(folder_ / "config", R"({"comment": "frame throws"})");
  const Outcome outcome =
      run_fake({folder_ / "clip.mp4", "--quiet", "--config", folder_ / "config", GetParam().option, file});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(program::read(file), "old");
  EXPECT_EQ(folder_.names(), (Names{GetParam().file, "clip.mp4", "config"}));
}

INSTANTIATE_TEST_SUITE_P(All, EachOutput, testing::ValuesIn(kOutputs), [](const auto& output) {
  return std::string(output.param.option + 2) + "_" + (std::strrchr(output.param.file, '.') + 1);
});

// The one event in these frames begins with the second of them.
constexpr Output kFolders[] = {{"--snapshots", "00h00m00.040s-0001-motion.jpg"},
                               {"--clips", "00h00m00.040s-0001-motion.mp4"}};

class EachFolder : public testing::TestWithParam<Output> {
 protected:
  EachFolder() {
    clips::write(folder_ / "clip.mp4", {64, 48}, clips::regular(40, 40ms));
    std::filesystem::create_directory(folder_ / "out");
  }

  Outcome run_with(const std::string& out, const Names& more = {}) const {
    Names arguments{"--quiet", GetParam().option, out, "--events", folder_ / "a.json"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return run_fake(arguments);
  }

  static void expect_complaint(const Outcome& outcome, const std::string& text) {
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(program::lines(outcome.errors).size(), 1U) << outcome.errors;
    EXPECT_NE(outcome.errors.find(text), std::string::npos) << outcome.errors;
  }

  Names results() const {
    Names names;
    for (const auto& entry : std::filesystem::directory_iterator(folder_ / "out"))
      names.push_back(entry.path().filename());
    return names;
  }

  Folder folder_;
};

TEST_P(EachFolder, ThatIsFullGivesOneLineAndNoPartialFiles) {
  const std::string full = folder_ / "out/" + GetParam().file;
  std::filesystem::create_symlink("/dev/full", full);
  for (const Names& source : {Names{folder_ / "clip.mp4"}, Names{}}) {  // copied, and recorded
    expect_complaint(run_with(folder_ / "out", source), full + " cannot be written: No space left on device");
    EXPECT_EQ(results(), Names{GetParam().file}) << "which is the link";
    EXPECT_FALSE(std::filesystem::exists(folder_ / "a.json"));
  }
}

TEST_P(EachFolder, ThatIsUnwritableIsReportedBeforeTheFirstFrame) {
  const std::string closed = folder_ / "out";
  chmod(closed.c_str(), 0500);
  // Root can write there nevertheless.
  const std::string out = access(closed.c_str(), W_OK) == 0 ? "/sys" : closed;
  program::write(folder_ / "config", R"({"comment": "frame throws"})");
  expect_complaint(run_with(out, {"--config", folder_ / "config"}), out + "/");
}

TEST_P(EachFolder, ThatIsAFileIsNamed) {
  program::write(folder_ / "file", "");
  expect_complaint(run_with(folder_ / "file"), (folder_ / "file") + " cannot be created: Not a directory");
  expect_complaint(run_with(folder_ / "file/out"),
                   (folder_ / "file/out") + " cannot be created: Not a directory");
}

INSTANTIATE_TEST_SUITE_P(All, EachFolder, testing::ValuesIn(kFolders),
                         [](const auto& output) { return std::string(output.param.option + 2); });

TEST(AllOutputs, AreCompletedWhenTheProgramIsStopped) {
  const Folder folder;
  std::vector<std::string> arguments{"run", "--plugin", LIGHTMOTION_FAKE_PLUGIN};
  for (const Output& output : kOutputs) {
    if (output.file == std::string("a.csv") || output.file == std::string("a.jsonl")) continue;
    arguments.insert(arguments.end(), {output.option, folder / output.file});
  }
  int ends[2];
  ASSERT_EQ(pipe2(ends, O_CLOEXEC), 0);
  const int errors = open((folder / "errors").c_str(), O_CREAT | O_RDWR | O_CLOEXEC, 0600);
  const pid_t process = program::start(arguments, ends[1], errors);
  close(ends[1]);
  char piece[4096];
  ASSERT_GT(read(ends[0], piece, 1), 0);
  kill(process, SIGINT);
  while (read(ends[0], piece, sizeof piece) > 0) {
  }
  EXPECT_EQ(program::wait_for(process), 130);
  close(ends[0]);
  close(errors);
  EXPECT_EQ(folder.names(), (Names{"a.html", "a.json", "a.mp4", "a.png", "errors"}));
  Json::Value events;
  std::istringstream(program::read(folder / "a.json")) >> events;
  EXPECT_EQ(events["format"], "lightmotion-events");
  EXPECT_GT(clips::read(folder / "a.mp4").size(), 0U);
}

TEST(ProgressForPrograms, IsJsonLinesAndTheLastSaysDone) {
  for (const Names& more : {Names{}, Names{"--quiet"}}) {
    std::vector<std::string> arguments{"-o", "/dev/null", "--progress", "json"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    const Outcome outcome = run_fake(arguments);
    EXPECT_EQ(outcome.status, 0);
    const auto lines = program::lines(outcome.errors);
    ASSERT_GE(lines.size(), 2U) << "one at the first frame, one at the end";
    std::vector<Json::Value> states;
    for (const std::string& line : lines) {
      std::istringstream(line) >> states.emplace_back();
      ASSERT_TRUE(states.back().isObject()) << line;
    }
    EXPECT_EQ(states.front()["frames"], 1);
    EXPECT_FALSE(states.front().isMember("done"));
    EXPECT_EQ(states.back()["frames"], 500);
    EXPECT_DOUBLE_EQ(states.back()["duration"].asDouble(), 20.0);
    EXPECT_TRUE(states.back()["done"].asBool());
  }
}

TEST(ProgressForPrograms, HasNoLastLineWhereTheRunFailed) {
  const Outcome outcome = run_fake({"-o", "/dev/full", "--progress", "json"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.errors.find("done"), std::string::npos);
  EXPECT_TRUE(program::lines(outcome.errors).back().starts_with("lightmotion: /dev/full cannot be written"));
}

TEST(ProgressForPrograms, NoneLeavesTheSummary) {
  const Outcome outcome = run_fake({"-o", "/dev/null", "--progress", "none"});
  EXPECT_TRUE(outcome.errors.starts_with("built-in scene: 500 frames")) << outcome.errors;
  EXPECT_EQ(run_fake({"--progress", "often"}).status, 2);
}

}  // namespace
