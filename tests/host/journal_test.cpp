// Files that are appended to as lines come.
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <csignal>

#include "host/base/failure.h"
#include "host/base/interrupt.h"
#include "host/base/journal.h"
#include "tests/host/program.h"

namespace {

using namespace lm::host::base;
using namespace std::chrono_literals;
using program::Folder;
using program::read;
using program::write;
using Names = std::vector<std::string>;

const std::string kBegin = "{\"a\":";
const std::string kOne = "{\"a\":1}\n";
const std::string kTwo = "{\"a\":2}\n";
const std::string kThree = "{\"a\":3}\n";

// The contents after a run that appends the second line.
std::string continued(const std::string& before) {
  const Folder folder;
  write(folder / "a.jsonl", before);
  Journal(folder / "a.jsonl", kBegin, {}).append(kTwo);
  return read(folder / "a.jsonl");
}

std::string refusal(const std::string& file, const std::string& begin = kBegin) {
  try {
    const Journal journal(file, begin, {});
    return "";
  } catch (const Failure& failure) {
    return failure.what();
  }
}

TEST(Journal, HasEachLineAtOnceUnderItsName) {
  const Folder folder;
  Journal journal(folder / "a.jsonl", kBegin, {});
  EXPECT_EQ(folder.names(), Names{"a.jsonl"});
  journal.append(kOne);
  EXPECT_EQ(read(folder / "a.jsonl"), kOne);
  journal.append(kTwo);
  EXPECT_EQ(read(folder / "a.jsonl"), kOne + kTwo);
}

TEST(Journal, ContinuesTheFileThatIsThere) { EXPECT_EQ(continued(kOne), kOne + kTwo); }

TEST(Journal, RemovesATornLine) {
  EXPECT_EQ(continued(kOne + "{\"a\":"), kOne + kTwo);
  EXPECT_EQ(continued("{\"a"), kTwo) << "the only line";
  const std::string longer = "{\"a\":\"" + std::string(200'000, 'x') + "\"}\n";
  EXPECT_EQ(continued(kOne + longer.substr(0, 150'000)), kOne + kTwo) << "longer than what is read at once";
  EXPECT_EQ(continued(longer + "{"), longer + kTwo);
}

TEST(Journal, CompletesALineThatLacksOnlyItsEnd) {
  EXPECT_EQ(continued("{\"a\":1}"), kOne + kTwo);
  EXPECT_EQ(continued(kThree + "{\"a\":1}"), kThree + kOne + kTwo);
}

TEST(Journal, RemovesTheZerosOfAPowerCut) {
  const std::string zeros(5000, '\0');
  EXPECT_EQ(continued(kOne + zeros), kOne + kTwo);
  EXPECT_EQ(continued(zeros), kTwo);
}

TEST(Journal, LeavesAFileOfAnotherKindAlone) {
  const Folder folder;
  const std::string text = "{\n  \"roi\": []\n}";
  write(folder / "a", text);
  EXPECT_EQ(refusal(folder / "a"),
            (folder / "a") + " exists and has other contents; rename it, or choose another name");
  EXPECT_EQ(read(folder / "a"), text);
  EXPECT_EQ(refusal(folder / "no/a"), (folder / "no/a") + " cannot be written: No such file or directory");
}

TEST(Journal, IsWrittenByOneProcessOnly) {
  const Folder folder;
  const Journal first(folder / "a", kBegin, {});
  EXPECT_EQ(refusal(folder / "a"), (folder / "a") + " cannot be written: another process is writing to it");
}

TEST(Journal, GivesEachNewFileItsHeading) {
  const Folder folder;
  const Rotation small{false, 12};
  const auto now = [] { return WallTime(1'700'000'000'123ms); };  // 2023-11-14 22:13:20 UTC
  {
    Journal journal(folder / "a.csv", "x,y\r\n", small, now);
    journal.append("1,2\r\n");  // 10 bytes
    journal.append("3,4\r\n");
    EXPECT_EQ(read(folder / "a.csv"), "x,y\r\n3,4\r\n");
    EXPECT_EQ(read(folder / "a-2023-11-14T22-13-20Z.csv"), "x,y\r\n1,2\r\n");
  }
  { const Journal again(folder / "a.csv", "x,y\r\n", small, now); }
  EXPECT_EQ(read(folder / "a.csv"), "x,y\r\n3,4\r\n");
  EXPECT_NE(refusal(folder / "a.csv", "x,y,z\r\n"), "") << "other columns";
}

TEST(Journal, BeginsANewFileBeforeItExceedsTheSize) {
  const Folder folder;
  const auto now = [] { return WallTime(1'700'000'000'123ms); };
  Journal journal(folder / "a.jsonl", kBegin, {false, 16}, now);
  for (const std::string& line : {kOne, kTwo, kThree, kOne, kTwo}) journal.append(line);  // 8 bytes each
  EXPECT_EQ(folder.names(),
            (Names{"a-2023-11-14T22-13-20Z-2.jsonl", "a-2023-11-14T22-13-20Z.jsonl", "a.jsonl"}))
      << "never over an existing one";
  EXPECT_EQ(read(folder / "a-2023-11-14T22-13-20Z.jsonl"), kOne + kTwo);
  EXPECT_EQ(read(folder / "a-2023-11-14T22-13-20Z-2.jsonl"), kThree + kOne);
  EXPECT_EQ(read(folder / "a.jsonl"), kTwo);
}

TEST(Journal, BeginsANewFileAtMidnightUtc) {
  const Folder folder;
  WallTime now(std::chrono::days(19'675) + 23h + 59min);  // 2023-11-14
  Journal journal(folder / "a.jsonl", kBegin, {true, 0}, [&] { return now; });
  journal.append(kOne);
  now += 59s;
  journal.tick();
  EXPECT_EQ(folder.names(), Names{"a.jsonl"});
  now += 1s;
  journal.tick();
  EXPECT_EQ(folder.names(), (Names{"a-2023-11-14.jsonl", "a.jsonl"})) << "not only with the next line";
  journal.append(kTwo);
  now += 24h;
  journal.append(kThree);
  EXPECT_EQ(read(folder / "a-2023-11-15.jsonl"), kTwo);
  EXPECT_EQ(read(folder / "a.jsonl"), kThree);
  now += 24h;
  journal.tick();
  now += 24h;
  journal.tick();
  EXPECT_EQ(folder.names().size(), 4U) << "an empty file is not renamed";
}

class Hangup : public testing::Test {
 protected:
  void SetUp() override { count_hangups(); }
  void TearDown() override { std::signal(SIGHUP, SIG_DFL); }
};

TEST_F(Hangup, ReopensTheFileThatWasRenamed) {
  const Folder folder;
  Journal journal(folder / "a", kBegin, {});
  journal.append(kOne);
  std::filesystem::rename(folder / "a", folder / "a.1");
  journal.append(kTwo);
  std::raise(SIGHUP);
  journal.tick();
  EXPECT_EQ(folder.names(), (Names{"a", "a.1"}));
  journal.append(kThree);
  EXPECT_EQ(read(folder / "a.1"), kOne + kTwo);
  EXPECT_EQ(read(folder / "a"), kThree);
  EXPECT_EQ(interrupted(), 0);
}

// A limit on the size of files stands for a full disk.
class FullDisk : public Hangup {
 protected:
  void SetUp() override {
    Hangup::SetUp();
    handler_ = std::signal(SIGXFSZ, SIG_IGN);
    getrlimit(RLIMIT_FSIZE, &before_);
  }
  void TearDown() override {
    room();
    std::signal(SIGXFSZ, handler_);
    Hangup::TearDown();
  }
  void full_at(rlim_t bytes) const {
    const rlimit limit{bytes, before_.rlim_max};
    setrlimit(RLIMIT_FSIZE, &limit);
  }
  void room() const { setrlimit(RLIMIT_FSIZE, &before_); }

  const Folder folder_;
  rlimit before_{};
  void (*handler_)(int) = SIG_DFL;
};

TEST_F(FullDisk, KeepsWhatIsThereAndWritesTheRestWhenThereIsRoom) {
  const std::string before =
      "{\"a\":\"" + std::string(991, 'x') + "\"}\n";  // 1000 bytes: the limit is also the log's
  program::write(folder_ / "a", before);
  Journal journal(folder_ / "a", kBegin, {});
  full_at(1012);
  testing::internal::CaptureStderr();
  journal.append(kOne);
  journal.append(kTwo);
  journal.append(kThree);
  EXPECT_EQ(read(folder_ / "a"), before + kOne + kTwo.substr(0, 4));
  room();
  journal.tick();
  const std::string log = testing::internal::GetCapturedStderr();
  EXPECT_EQ(read(folder_ / "a"), before + kOne + kTwo + kThree);
  const std::string name = "lightmotion: warning: " + (folder_ / "a");
  EXPECT_EQ(log, name + " cannot be written: File too large; the run continues and tries again\n" + name +
                     " can be written again\n");
}

TEST_F(FullDisk, PutsATornLineWholeIntoTheNextFile) {
  Journal journal(folder_ / "a", kBegin, {});
  full_at(12);
  testing::internal::CaptureStderr();
  journal.append(kOne);
  journal.append(kTwo);
  std::filesystem::rename(folder_ / "a", folder_ / "a.1");
  std::raise(SIGHUP);
  journal.tick();
  testing::internal::GetCapturedStderr();
  EXPECT_EQ(read(folder_ / "a"), kTwo);
}

TEST_F(FullDisk, RepairsATornLineWhenTheFileIsOpenedAgain) {
  Journal journal(folder_ / "a", kBegin, {});
  full_at(12);
  testing::internal::CaptureStderr();
  journal.append(kOne);
  journal.append(kTwo);
  room();
  std::raise(SIGHUP);
  journal.tick();
  testing::internal::GetCapturedStderr();
  EXPECT_EQ(read(folder_ / "a"), kOne + kTwo);
}

TEST_F(FullDisk, LosesOnlyLinesBeyondAMebibyteAndCountsThem) {
  Journal journal(folder_ / "a", kBegin, {});
  full_at(0);
  testing::internal::CaptureStderr();
  const std::string line = "{\"a\":\"" + std::string(1013, 'x') + "\"}\n";  // 1022 bytes
  for (int i = 0; i < 1030; ++i) journal.append(line);
  room();
  journal.finish();
  const std::string log = testing::internal::GetCapturedStderr();
  EXPECT_EQ(program::lines(read(folder_ / "a")).size(), 1026U) << "1026 * 1022 = 1,048,572";
  EXPECT_NE(log.find("can be written again; skipped in the meantime: 4\n"), std::string::npos) << log;
}

}  // namespace
