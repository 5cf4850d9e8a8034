// Files that get their names when complete, and result lines written to them.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "host/base/failure.h"
#include "host/base/line_sink.h"
#include "host/base/pending_file.h"
#include "tests/host/program.h"

namespace {

using namespace lm::host::base;
using program::Folder;
using Names = std::vector<std::string>;

TEST(PendingFile, HasItsNameOnlyAfterCommit) {
  const Folder folder;
  PendingFile file(folder / "a.mp4");
  program::write(file.path(), "text");
  EXPECT_EQ(std::filesystem::path(file.path()).parent_path(),
            std::filesystem::path(folder / "a.mp4").parent_path());
  EXPECT_FALSE(std::filesystem::exists(folder / "a.mp4"));
  file.commit();
  EXPECT_EQ(folder.names(), Names{"a.mp4"});
  EXPECT_EQ(program::read(folder / "a.mp4"), "text");
}

TEST(PendingFile, LeavesNothingBehindWithoutCommit) {
  const Folder folder;
  { PendingFile file(folder / "a"); }
  EXPECT_EQ(folder.names(), Names{});
}

TEST(PendingFile, KeepsTheFileThatWasThereUntilCommit) {
  const Folder folder;
  program::write(folder / "a", "old");
  {
    PendingFile file(folder / "a");
    program::write(file.path(), "new");
  }
  EXPECT_EQ(program::read(folder / "a"), "old");
  PendingFile file(folder / "a");
  program::write(file.path(), "new");
  file.commit();
  EXPECT_EQ(program::read(folder / "a"), "new");
}

TEST(PendingFile, TwoWithOneNameDoNotCollide) {
  const Folder folder;
  PendingFile first(folder / "a");
  PendingFile second(folder / "a");
  EXPECT_NE(first.path(), second.path());
}

TEST(PendingFile, FollowsASymbolicLinkAndKeepsIt) {
  const Folder folder;
  program::write(folder / "real", "old");
  std::filesystem::create_symlink(folder / "real", folder / "link");
  PendingFile file(folder / "link");
  program::write(file.path(), "new");
  file.commit();
  EXPECT_TRUE(std::filesystem::is_symlink(folder / "link"));
  EXPECT_EQ(program::read(folder / "real"), "new");
}

TEST(PendingFile, HasThePermissionsOfNewFiles) {
  const Folder folder;
  const mode_t mask = umask(027);
  PendingFile file(folder / "a");
  umask(mask);
  struct stat facts {};
  ASSERT_EQ(stat(file.path().c_str(), &facts), 0);
  EXPECT_EQ(facts.st_mode & 0777U, 0640U);
}

TEST(PendingFile, WritesToADeviceDirectly) {
  PendingFile file("/dev/null");
  EXPECT_EQ(file.path(), "/dev/null");
  file.commit();
  EXPECT_TRUE(std::filesystem::is_character_file("/dev/null"));
}

std::string failure_of(const std::string& target) {
  try {
    PendingFile file(target);
    return "no failure";
  } catch (const Failure& failure) {
    EXPECT_EQ(failure.status(), kTrouble);
    return failure.what();
  }
}

TEST(PendingFile, ReportsAnUnwritableFolderAtOnce) {
  const Folder folder;
  EXPECT_EQ(failure_of(folder / "no/a"), (folder / "no/a") + " cannot be written: No such file or directory");
  EXPECT_EQ(failure_of(folder / "."), (folder / ".") + " cannot be written: Is a directory");
}

TEST(LineSink, WritesLinesToItsFile) {
  const Folder folder;
  LineSink sink(folder / "a");
  sink.write("one");
  sink.write("two");
  EXPECT_FALSE(std::filesystem::exists(folder / "a"));
  sink.finish();
  EXPECT_FALSE(std::filesystem::exists(folder / "a"));
  sink.commit();
  EXPECT_EQ(program::read(folder / "a"), "one\ntwo\n");
}

TEST(LineSink, AFileWithoutLinesIsEmptyButThere) {
  const Folder folder;
  LineSink sink(folder / "a");
  sink.finish();
  sink.commit();
  EXPECT_EQ(folder.names(), Names{"a"});
}

TEST(LineSink, ReportsWriteErrors) {
  LineSink sink("/dev/full");
  try {
    for (int i = 0; i < 100'000; ++i) sink.write("more than any buffer takes");
    sink.finish();
    FAIL() << "a full device took everything";
  } catch (const Failure& failure) {
    EXPECT_STREQ(failure.what(), "/dev/full cannot be written: No space left on device");
  }
}

TEST(Failure, IsAlwaysOneLine) {
  EXPECT_STREQ(Failure(kRefused, " a\n\n b\tc \x1b[1m\n").what(), "a b c [1m");
}

}  // namespace
