// Archive runs of the built program.
#include "tests/host/archive.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <json/json.h>
#include <sys/file.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <sstream>

#include "host/commands/archive/folder_name.h"
#include "tests/host/clips.h"

namespace {

namespace fs = std::filesystem;
using archive::tree;
using program::Folder;
using program::Outcome;
using program::run_fake;
using Names = std::vector<std::string>;

// Without the names of the files in result folders, which do not matter here.
class Archive : public testing::Test {
 protected:
  void SetUp() override {
    fs::create_directories(folder_ / "in/a");
    fs::create_directories(folder_ / "in/b");
    for (const std::string& clip : clips()) program::write(clip, archive::clip_bytes());
    program::write(folder_ / "c.json", "{}");
  }

  // Sorted by path.
  Names clips() const {
    return {folder_ / "in/a/clip.mkv", folder_ / "in/a/it's \"one\"\nclip.mkv", folder_ / "in/b/clip.mkv"};
  }

  static std::string results(const std::string& out, const std::string& clip) {
    return out + "/" + lm::host::commands::archive::folder_name(fs::canonical(clip).string());
  }

  Names arguments(const std::string& out, const Names& more = {}) const {
    Names all{folder_ / "in", "--out", folder_ / out, "-c", folder_ / "c.json"};
    all.insert(all.end(), more.begin(), more.end());
    return all;
  }

  Outcome run(const std::string& out, const Names& more = {}) const { return run_fake(arguments(out, more)); }

  pid_t start(const std::string& out, const Names& more = {}) const {
    const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
    const pid_t process = program::start(archive::arguments(arguments(out, more)), nowhere, nowhere);
    close(nowhere);
    return process;
  }

  Folder folder_;
};

TEST_F(Archive, GivesEachFileTheResultsOfASeparateRun) {
  ASSERT_EQ(run("out").status, 0);
  for (const std::string& clip : clips()) {
    const Outcome alone = run_fake({fs::canonical(clip), "-c", folder_ / "c.json", "--quiet"});
    const auto files = tree(results(folder_ / "out", clip));
    ASSERT_EQ(files.size(), 2U);
    EXPECT_EQ(files.at("results.jsonl"), alone.output);
    Json::Value record;
    std::istringstream(files.at("run.json")) >> record;
    EXPECT_EQ(record["source"]["name"].asString(), fs::canonical(clip));
    EXPECT_EQ(record["source"]["size"].asUInt64(), archive::clip_bytes().size());
    EXPECT_EQ(record["exit_status"].asInt(), 0);
    EXPECT_EQ(record["frames"].asInt(), 20);
    EXPECT_EQ(record["frames_with_boxes"].asInt(), 18);
  }
  EXPECT_EQ(tree(folder_ / "out").size(), 3U * 2 + 1) << "and the table";
}

TEST_F(Archive, EndsWithATableOfAllFiles) {
  const Outcome outcome = run("out");
  const Names lines = program::lines(outcome.output);
  ASSERT_EQ(lines.size(), 5U) << outcome.output;
  EXPECT_NE(lines[1].find("ok                20        18"), std::string::npos) << lines[1];
  EXPECT_TRUE(lines[4].starts_with("3 files: 3 ok, 0 incomplete, 0 failed; 60 frames, 54 with motion, "));
  EXPECT_EQ(outcome.errors, "");
  EXPECT_EQ(run("out", {"--quiet"}).output, "");
}

TEST_F(Archive, PutsOtherOutputsAmongTheResults) {
  ASSERT_EQ(run("out", {"-a", "boxes.mp4", "-o", "lines"}).status, 0);
  const std::string folder = results(folder_ / "out", clips()[0]);
  EXPECT_TRUE(fs::exists(folder + "/boxes.mp4"));
  EXPECT_TRUE(fs::exists(folder + "/lines"));
  EXPECT_FALSE(fs::exists(folder + "/results.jsonl"));
}

TEST_F(Archive, ContinuesAfterBrokenFiles) {
  const std::string whole = archive::clip_bytes();
  program::write(folder_ / "in/cut.mkv", whole.substr(0, whole.size() * 3 / 4));
  program::write(folder_ / "in/nothing.mp4", "");
  program::write(folder_ / "in/sound.mp4", archive::sound_bytes());
  const Outcome outcome = run("out");
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(program::lines(outcome.errors).size(), 3U) << outcome.errors;
  EXPECT_NE(outcome.errors.find("/in/sound.mp4: contains no video\n"), std::string::npos) << outcome.errors;
  EXPECT_NE(outcome.output.find("6 files: 3 ok, 1 incomplete, 2 failed;"), std::string::npos)
      << outcome.output;
  const std::string cut = results(folder_ / "out", folder_ / "in/cut.mkv");
  const std::string lines = program::read(cut + "/results.jsonl");
  EXPECT_FALSE(lines.empty()) << "what could be decoded is used";
  EXPECT_TRUE(program::read(results(folder_ / "out", clips()[0]) + "/results.jsonl").starts_with(lines));
  EXPECT_NE(program::read(cut + "/messages.txt").find("cut.mkv: "), std::string::npos);
  EXPECT_FALSE(fs::exists(results(folder_ / "out", folder_ / "in/nothing.mp4")));
  EXPECT_EQ(run("out").status, 1) << "the problem is remembered";
}

TEST_F(Archive, ContinuesAfterProcessesThatDie) {
  program::write(folder_ / "c.json", R"({"comment": "frame dies"})");
  const Outcome outcome = run("out", {"--jobs", "2"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_NE(outcome.output.find("3 files: 0 ok, 0 incomplete, 3 failed;"), std::string::npos);
  EXPECT_NE(outcome.errors.find("the process was terminated by a signal: Killed"), std::string::npos);
  EXPECT_EQ(tree(folder_ / "out").size(), 1U) << "the table and nothing half";
}

TEST_F(Archive, ReportsARefusedConfigurationOnceAndStartsNoFile) {
  program::write(folder_ / "c.json", R"({"comment": "refuse"})");
  const Outcome outcome = run("out");
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.errors, "lightmotion: " + (folder_ / "c.json") +
                                ": the plug-in refuses it: Error: this document is refused\n");
  EXPECT_EQ(outcome.output, "");
  EXPECT_FALSE(fs::exists(folder_ / "out"));
}

TEST_F(Archive, FailsOnlyForFilesThatTheConfigurationDoesNotFit) {
  clips::write(folder_ / "in/b/large.mkv", {128, 96}, clips::regular(20, std::chrono::milliseconds(40)));
  program::write(folder_ / "c.json", R"({"frmW": "128", "frmH": "96"})");
  const Outcome outcome = run("out");
  EXPECT_EQ(outcome.status, 1);
  EXPECT_NE(outcome.output.find("4 files: 1 ok, 0 incomplete, 3 failed;"), std::string::npos)
      << outcome.output;
  EXPECT_NE(outcome.errors.find("frmW"), std::string::npos);
}

TEST_F(Archive, StopsFilesAtTheirTimeLimit) {
  program::write(folder_ / "c.json", R"({"comment": "frame waits"})");
  const Outcome outcome = run("out", {"--file-timeout", "0.5", "--jobs", "3"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_NE(outcome.output.find("3 files: 0 ok, 0 incomplete, 3 failed;"), std::string::npos);
  EXPECT_NE(outcome.errors.find("/in/b/clip.mkv: time limit of 0.500 s exceeded (--file-timeout)\n"),
            std::string::npos)
      << outcome.errors;
  EXPECT_EQ(tree(folder_ / "out").size(), 1U) << "the table and nothing half";
  program::write(folder_ / "c.json", "{}");
  EXPECT_EQ(run("out", {"--file-timeout", "600"}).status, 0) << "and goes on with them";
}

TEST_F(Archive, SkipsFinishedFilesUntilSourceOrSettingsChange) {
  ASSERT_EQ(run("out").status, 0);
  const std::string mark = results(folder_ / "out", clips()[0]) + "/mark";
  const auto kept = [&](const Names& more = {}) {
    program::write(mark, "");
    EXPECT_EQ(run("out", more).status, 0);
    return fs::exists(mark);
  };
  EXPECT_TRUE(kept());
  EXPECT_TRUE(kept({"--jobs", "1", "--file-timeout", "600", "--quiet", "--verbose"}));
  EXPECT_FALSE(kept({"--force"}));
  EXPECT_FALSE(kept({"-a", "a.mp4"}));
  ASSERT_FALSE(kept());  // without -a again
  program::write(folder_ / "c.json", R"({"sensitivity": "2"})");
  EXPECT_FALSE(kept());
  fs::last_write_time(clips()[0], fs::last_write_time(clips()[0]) + std::chrono::seconds(1));
  EXPECT_FALSE(kept());
  EXPECT_TRUE(kept());
}

// Two files of the same size are left; the bytes of the finished one are not in the time left.
TEST_F(Archive, EstimatesTheTimeLeftWithoutFinishedFiles) {
  ASSERT_EQ(run("out", {"--shard", "1/3"}).status, 0);
  const Names lines = program::lines(run("out", {"--progress", "json", "--jobs", "1"}).errors);
  ASSERT_EQ(lines.size(), 3U);
  EXPECT_NE(lines[1].find("\"eta\":"), std::string::npos) << "one of two processed: " << lines[1];
  EXPECT_NE(lines[2].find("\"files_done\":3,"), std::string::npos) << lines[2];
  EXPECT_EQ(lines[2].find("\"eta\":"), std::string::npos) << "nothing is left: " << lines[2];
}

TEST_F(Archive, KeepsOlderResultsIfNewOnesFail) {
  ASSERT_EQ(run("out").status, 0);
  const auto before = tree(results(folder_ / "out", clips()[0]));
  program::write(folder_ / "c.json", R"({"comment": "frame throws"})");
  EXPECT_EQ(run("out").status, 1);
  EXPECT_EQ(tree(results(folder_ / "out", clips()[0])), before);
}

TEST_F(Archive, ShardsAreDisjointAndTogetherWhole) {
  ASSERT_EQ(run("whole").status, 0);
  const auto whole = tree(folder_ / "whole");
  std::size_t files = 0;
  for (const std::string shard : {"1", "2"}) {
    ASSERT_EQ(run("own" + shard, {"--shard", shard + "/2"}).status, 0);
    files += tree(folder_ / ("own" + shard)).size() - 1;  // without the table
    ASSERT_EQ(run("out", {"--shard", shard + "/2"}).status, 0);
  }
  EXPECT_EQ(files, 3U * 2);
  auto shards = tree(folder_ / "out");
  // Files 1 and 3 with the line of names, and file 2, whose quoted name takes two lines.
  EXPECT_EQ(program::lines(shards.at("files-1-of-2.csv")).size(), 3U);
  EXPECT_EQ(program::lines(shards.at("files-2-of-2.csv")).size(), 3U);
  EXPECT_EQ(run("out").output, run("whole").output) << "the table of all comes from what the shards left";
  shards = tree(folder_ / "out");
  shards.erase("files-1-of-2.csv");
  shards.erase("files-2-of-2.csv");
  EXPECT_EQ(shards, whole);
}

TEST_F(Archive, TwoRunsAtOnceShareTheWork) {
  ASSERT_EQ(run("whole").status, 0);
  const pid_t first = start("out", {"--jobs", "1"});
  const pid_t second = start("out", {"--jobs", "1"});
  EXPECT_EQ(program::wait_for(first), 0);
  EXPECT_EQ(program::wait_for(second), 0);
  EXPECT_EQ(tree(folder_ / "out"), tree(folder_ / "whole"));
}

// Runs that are stopped while processing files: the fake plug-in waits in the fifth frame.
class EndedArchive : public Archive {
 protected:
  void start_and_wait_until_two_are_in_hand() {
    program::write(folder_ / "c.json", R"({"comment": "frame waits"})");
    process_ = start("out", {"--jobs", "2"});
    ASSERT_TRUE(archive::eventually([&] { return in_hand() == 2; }));
    children_ = program::read("/proc/" + std::to_string(process_) + "/task/" + std::to_string(process_) +
                              "/children");
  }

  // Result files being written.
  std::ptrdiff_t in_hand() const {
    std::error_code error;
    std::ptrdiff_t count = 0;
    fs::recursive_directory_iterator entry(folder_ / "out", error);
    for (; !error && entry != fs::recursive_directory_iterator(); entry.increment(error)) {
      count += entry->path().extension() == ".part" ? 1 : 0;
    }
    return count;
  }

  // A zombie process counts as gone.
  bool children_are_gone() const {
    std::istringstream children(children_);
    for (std::string child; children >> child;) {
      const std::string state = program::read("/proc/" + child + "/stat");
      if (!state.empty() && state[state.rfind(')') + 2] != 'Z') return false;
    }
    return true;
  }

  // Compares with an uninterrupted run.
  void resume() {
    program::write(folder_ / "c.json", "{}");
    EXPECT_EQ(run("out").status, 0);
    EXPECT_EQ(run("whole").status, 0);
    EXPECT_EQ(tree(folder_ / "out"), tree(folder_ / "whole"));
  }

  pid_t process_ = 0;
  std::string children_;
};

TEST_F(EndedArchive, WhenKilledEndsItsChildrenAndTheNextRunGivesTheSameBytes) {
  ASSERT_EQ(run("out", {"--shard", "1/3"}).status, 0);
  fs::remove(folder_ / "out/files-1-of-3.csv");
  const auto before = tree(results(folder_ / "out", clips()[0]));
  start_and_wait_until_two_are_in_hand();
  kill(process_, SIGKILL);
  EXPECT_EQ(program::wait_for(process_), 137);
  EXPECT_TRUE(archive::eventually([&] { return children_are_gone(); }));
  EXPECT_EQ(in_hand(), 2) << "the test is about what a killed run leaves";
  EXPECT_EQ(tree(results(folder_ / "out", clips()[0])), before);
  resume();
}

TEST_F(EndedArchive, WhenStoppedEndsItsChildrenAndLeavesNoPartialResults) {
  start_and_wait_until_two_are_in_hand();
  kill(process_, SIGINT);
  EXPECT_EQ(program::wait_for(process_), 130);
  EXPECT_TRUE(children_are_gone());
  EXPECT_EQ(Names(), [&] {
    Names names;
    for (const auto& entry : fs::directory_iterator(folder_ / "out"))
      names.push_back(entry.path().filename());
    return names;
  }());
  resume();
}

TEST_F(Archive, WaitsForFilesThatAnotherRunProcesses) {
  const std::string folder = folder_ / "out/." +
                             lm::host::commands::archive::folder_name(fs::canonical(clips()[0]).string()) +
                             ".work";
  fs::create_directories(folder);
  const int lock = open((folder + "/lock").c_str(), O_CREAT | O_RDWR | O_CLOEXEC, 0600);
  ASSERT_EQ(flock(lock, LOCK_EX), 0);
  const pid_t process = start("out");
  EXPECT_TRUE(archive::eventually([&] { return fs::exists(results(folder_ / "out", clips()[2])); }));
  EXPECT_FALSE(fs::exists(results(folder_ / "out", clips()[0])));
  close(lock);
  EXPECT_EQ(program::wait_for(process), 0);
  EXPECT_TRUE(fs::exists(results(folder_ / "out", clips()[0])));
}

struct MisuseCase {
  const char* name;
  Names arguments;
  const char* error;
};

class ArchiveMisuse : public testing::TestWithParam<MisuseCase> {};

TEST_P(ArchiveMisuse, IsOneLineAndStatusTwo) {
  const Outcome outcome = run_fake(GetParam().arguments);
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(program::lines(outcome.errors).size(), 1U) << outcome.errors;
  EXPECT_NE(outcome.errors.find(GetParam().error), std::string::npos) << outcome.errors;
}

INSTANTIATE_TEST_SUITE_P(
    All, ArchiveMisuse,
    testing::Values(
        MisuseCase{"SeveralSources", {"a.mp4", "b.mp4"}, "several sources need --out DIR: b.mp4"},
        MisuseCase{"Folder", {"/"}, "a folder needs --out DIR: /"},
        MisuseCase{"List", {"@list"}, "a list needs --out DIR: @list"},
        MisuseCase{"NoSource", {"--out", "x"}, "--out needs at least one source"},
        MisuseCase{"JobsAlone",
                   {"a.mp4", "--jobs", "2"},
                   "--jobs, --shard, --file-timeout and --force need --out DIR"},
        MisuseCase{"TimeoutAlone",
                   {"a.mp4", "--file-timeout", "2"},
                   "--jobs, --shard, --file-timeout and --force need --out DIR"},
        MisuseCase{"NoJobs", {"a.mp4", "--out", "x", "--jobs", "0"}, "--jobs"},
        MisuseCase{"Shard", {"/dev/null", "--out", "x", "--shard", "5/4"}, "--shard must be I/N"},
        MisuseCase{"Address", {"rtsp://a/b", "--out", "x"}, "--out needs files, not stream addresses"},
        MisuseCase{"OutputElsewhere",
                   {"a.mp4", "--out", "x", "-o", "y/a"},
                   "--output with --out must be a plain file name"},
        MisuseCase{"OutputTaken",
                   {"a.mp4", "--out", "x", "-o", "run.json"},
                   "the name run.json is reserved with --out"},
        MisuseCase{"FiguresTaken",
                   {"a.mp4", "--out", "x", "--events", "figures.json"},
                   "--events: the name figures.json is reserved with --out"},
        MisuseCase{"MessagesTaken",
                   {"a.mp4", "--out", "x", "-o", "messages.txt"},
                   "--output: the name messages.txt is reserved with --out"},
        MisuseCase{
            "NoConfiguration", {"/dev/null", "--out", "x", "-c", "none.json"}, "none.json: No such file"}),
    [](const auto& misuse) { return std::string(misuse.param.name); });

TEST_F(Archive, ReportsThatItsFolderCannotBeCreated) {
  program::write(folder_ / "file", "");
  const Outcome outcome = run("file/out");
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.errors,
            "lightmotion: " + (folder_ / "file/out") + " cannot be written: Not a directory\n");
}

}  // namespace
