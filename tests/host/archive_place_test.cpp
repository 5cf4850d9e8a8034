// Archive runs without space, without permission, and with several runs on the same results.
#include <fcntl.h>
#include <gtest/gtest.h>

#include <cstdlib>

#include "tests/host/archive.h"

namespace {

namespace fs = std::filesystem;
using archive::tree;
using program::Folder;
using Names = std::vector<std::string>;

// Runs a shell with these as $1, $2 ...; returns the status as a shell reports it.
int shell(const std::string& script, const Names& words) {
  Names all{"sh", "-c", script, "sh"};
  all.insert(all.end(), words.begin(), words.end());
  std::vector<char*> arguments;
  for (std::string& word : all) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  const pid_t process = fork();
  if (process == 0) {
    execvp("sh", arguments.data());
    _exit(127);
  }
  return program::wait_for(process);
}

// Namespaces need no privileges where the system allows them, and allow every user to mount.
class ArchivePlace : public testing::Test {
 protected:
  void SetUp() override {
    fs::create_directories(folder_ / "in");
    fs::create_directories(folder_ / "out");
    for (int i = 0; i < 12; ++i) {
      program::write(folder_ / ("in/" + std::to_string(i) + ".mkv"), archive::clip_bytes());
    }
    // The second is for root without user namespaces, the third for root in a chroot.
    for (const char* kind :
         {"--user --map-root-user --mount", "--mount", "--mount --propagation unchanged"}) {
      name_spaces_ = kind;
      if (within_mount("", "true") == 0) return;
    }
    GTEST_SKIP() << "this system does not let its users mount";
  }

  // Runs the script with a separate file system mounted at "out". $1: the test's folder, $2: the program, $3:
  // the plug-in.
  int within_mount(const std::string& options, const std::string& script) {
    const std::string mounted =
        "mount -t tmpfs " + options + " none \"$1/out\" || exit 99\ntrap 'umount \"$1/out\"' EXIT\n" + script;
    return shell(
        "script=$1; shift; exec unshare " + name_spaces_ + " sh -c \"$script\" sh \"$@\" 2>/dev/null",
        {mounted, folder_ / "", LIGHTMOTION_PROGRAM, LIGHTMOTION_FAKE_PLUGIN});
  }

  std::string name_spaces_;
  Folder folder_;
};

constexpr const char* kRun =
    R"("$2" run --plugin "$3" "$1/in" --out "$1/out" >"$1/table" 2>"$1/errors"; status=$?
)";

TEST_F(ArchivePlace, WhenUnwritableIsReportedOnce) {
  EXPECT_EQ(within_mount("-o ro", std::string(kRun) + "exit $status"), 1);
  EXPECT_EQ(program::read(folder_ / "errors"),
            "lightmotion: " + (folder_ / "") + "/out cannot be written: Read-only file system\n");
}

TEST_F(ArchivePlace, WhenFullKeepsOnlyCompleteResults) {
  // 18 lines take a page of 4 KiB and run.json another, so 64 KiB hold at most eight of twelve results.
  ASSERT_EQ(within_mount("-o size=64k", std::string(kRun) + R"(cp -a "$1/out" "$1/copy"; exit $status)"), 1);
  const std::string errors = program::read(folder_ / "errors");
  EXPECT_NE(errors.find("No space left on device"), std::string::npos) << errors;
  EXPECT_NE(program::read(folder_ / "table").find("failed"), std::string::npos);
  std::size_t whole = 0;
  for (const auto& entry : fs::directory_iterator(folder_ / "copy")) {
    if (!entry.is_directory()) continue;
    const auto files = tree(entry.path().string());
    EXPECT_EQ(files.size(), 2U) << entry.path();
    EXPECT_EQ(program::lines(files.at("results.jsonl")).size(), 18U);
    ++whole;
  }
  EXPECT_GT(whole, 0U);
  EXPECT_LE(whole, 8U);
}

TEST(ArchiveWithParallel, GivesWhatASingleRunGives) {
  if (shell("command -v parallel >/dev/null", {}) != 0) GTEST_SKIP() << "parallel is not installed";
  const Folder folder;
  fs::create_directories(folder / "a b");
  std::string list;
  for (const char* name : {"a b/1.mkv", "a b/2.mkv", "a b/3's.mkv", "4.mkv", "5.mkv"}) {
    program::write(folder / name, archive::clip_bytes());
    list += (folder / name) + "\n";
  }
  program::write(folder / "list", list);
  const std::string at_list = std::string("@").append(folder / "list");
  setenv("LIGHTMOTION", LIGHTMOTION_PROGRAM, 1);
  setenv("AT_A_TIME", "3", 1);
  EXPECT_EQ(shell(R"(exec "$1/parallel.sh" 3 "$2/list" "$2/out" --plugin "$3" >"$2/tables" 2>&1)",
                  {LIGHTMOTION_CLUSTER, folder / "", LIGHTMOTION_FAKE_PLUGIN}),
            0);
  unsetenv("LIGHTMOTION");
  unsetenv("AT_A_TIME");
  for (const char* shard : {"1", "2", "3"}) {
    EXPECT_TRUE(fs::remove(folder / std::string("out/files-").append(shard).append("-of-3.csv")))
        << program::read(folder / "tables");
  }
  ASSERT_EQ(program::run_fake({at_list, "--out", folder / "out"}).status, 0);
  ASSERT_EQ(program::run_fake({at_list, "--out", folder / "alone"}).status, 0);
  EXPECT_EQ(tree(folder / "out"), tree(folder / "alone"));
}

}  // namespace
