// Two archive runs that need the same file at the same time.
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <filesystem>
#include <functional>
#include <optional>
#include <utility>

#include "host/commands/archive/work_folder.h"
#include "tests/host/program.h"

namespace {

// What another process does between the opening and the locking of a lock file.
std::function<void()> meanwhile;

}  // namespace

// Replaces the C library's function in this program.
extern "C" int flock(int file, int operation) noexcept {
  if (meanwhile) std::exchange(meanwhile, nullptr)();
  return static_cast<int>(syscall(SYS_flock, file, operation));
}

namespace {

using lm::host::commands::archive::WorkFolder;

class WorkFolderRace : public testing::Test {
 protected:
  // As its owner does at the end.
  void leave() const {
    std::filesystem::remove(folder_ / ".a.work/lock");
    std::filesystem::remove(folder_ / ".a.work");
  }

  void SetUp() override {
    std::filesystem::create_directory(folder_ / ".a.work");
    program::write(folder_ / ".a.work/lock", "");
  }
  void TearDown() override { meanwhile = nullptr; }

  program::Folder folder_;
};

TEST_F(WorkFolderRace, AFolderThatItsOwnerJustRemovedIsCreatedAgain) {
  meanwhile = [&] { leave(); };
  const std::optional<WorkFolder> claimed = WorkFolder::claim(folder_ / "", "a");
  ASSERT_TRUE(claimed);
  EXPECT_TRUE(std::filesystem::exists(claimed->path()));
  EXPECT_TRUE(std::filesystem::exists(folder_ / ".a.work/lock"));
  EXPECT_FALSE(WorkFolder::claim(folder_ / "", "a")) << "the lock is that of the new file";
}

TEST_F(WorkFolderRace, AFolderThatAnotherRunTookOverIsLeftToIt) {
  std::optional<WorkFolder> other;
  meanwhile = [&] {
    leave();
    std::optional<WorkFolder> claimed = WorkFolder::claim(folder_ / "", "a");
    if (claimed) other.emplace(std::move(*claimed));
  };
  EXPECT_FALSE(WorkFolder::claim(folder_ / "", "a"));
  ASSERT_TRUE(other);
  EXPECT_TRUE(std::filesystem::exists(other->path()));
}

}  // namespace
