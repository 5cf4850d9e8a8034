// What an archive run records and prints about its files.
#include <gtest/gtest.h>

#include "host/base/child.h"
#include "host/commands/archive/archive_options.h"
#include "host/commands/archive/archive_progress.h"
#include "host/commands/archive/file_run.h"
#include "host/commands/archive/folder_name.h"
#include "host/commands/archive/record.h"
#include "host/commands/archive/table.h"
#include "host/commands/archive/work_folder.h"
#include "host/commands/command_line.h"
#include "tests/host/program.h"

namespace {

using namespace lm::host::base;
using namespace lm::host::commands::archive;
using namespace lm::host::commands::run;
using namespace std::chrono_literals;
using Names = std::vector<std::string>;

Figures figures(std::int64_t frames, std::int64_t with_motion, std::int64_t events,
                std::chrono::microseconds video) {
  Figures figures;
  figures.frames = frames;
  figures.frames_with_motion = with_motion;
  figures.events = events;
  figures.video = video;
  return figures;
}

Record whole_record() {
  Record record;
  record.path = "/a \"b\"\n.mp4";
  record.source.size = 123456789012;
  record.source.modified = "1700000000.000000007";
  record.options = {"--scale=2"};
  record.settings = "00ff";
  record.status = 1;
  record.why = "ends early";
  record.figures = figures(250, 17, 5, 10s);
  return record;
}

TEST(Record, IsReadAsItWasWritten) {
  const Record record = whole_record();
  const std::optional<Record> read = record_from(to_json(record));
  ASSERT_TRUE(read);
  EXPECT_EQ(read->path, record.path);
  EXPECT_EQ(read->source, record.source);
  EXPECT_EQ(read->options, record.options);
  EXPECT_EQ(read->settings, "00ff");
  EXPECT_EQ(read->status, 1);
  EXPECT_EQ(read->why, "ends early");
  EXPECT_EQ(read->figures.frames, 250);
  EXPECT_EQ(read->figures.frames_with_motion, 17);
  EXPECT_EQ(read->figures.events, 5);
  EXPECT_EQ(read->figures.video, 10s);
}

TEST(Record, IsInvalidInAnyOtherText) {
  const std::string whole = to_json(whole_record());
  ASSERT_TRUE(record_from(whole));
  for (const std::string& text :
       {std::string(), std::string("[]"), std::string("{}"), whole.substr(0, 40), std::string(5000, '[')}) {
    EXPECT_FALSE(record_from(text)) << text;
  }
}

TEST(Record, IsInvalidIfItsVideoIsImplausiblyLong) {
  const std::string whole = to_json(whole_record());
  const auto lasting = [&](const std::string& seconds) {
    std::string text = whole;
    text.replace(text.find("10.000"), 6, seconds);
    return record_from(text);
  };
  EXPECT_TRUE(lasting("0"));
  EXPECT_TRUE(lasting("3000000000")) << "95 years";
  EXPECT_FALSE(lasting("-1"));
  EXPECT_FALSE(lasting("\"1\""));
  EXPECT_FALSE(lasting("3200000000")) << "101 years";
  EXPECT_FALSE(lasting("1e300"));
}

TEST(SourceState, ChangesWithSizeAndTime) {
  const program::Folder folder;
  EXPECT_FALSE(source_state(folder / "a"));
  program::write(folder / "a", "12345");
  const auto before = source_state(folder / "a");
  ASSERT_TRUE(before);
  EXPECT_EQ(before->size, 5);
  const auto time = std::filesystem::last_write_time(folder / "a");
  std::filesystem::last_write_time(folder / "a", time + 1us);
  EXPECT_NE(source_state(folder / "a"), before);
}

TEST(Settings, AreTheSameWhateverHasNoSayInTheResults) {
  const std::string plain = settings_digest({"--a=1", "--b"}, "{}");
  EXPECT_EQ(settings_digest({"--b", "--a=1"}, "{}"), plain);
  EXPECT_EQ(settings_digest({"--a=1", "--b", "--quiet", "--config=x.json", "--verbose"}, "{}"), plain);
  EXPECT_NE(settings_digest({"--a=2", "--b"}, "{}"), plain);
  EXPECT_NE(settings_digest({"--a=1"}, "{}"), plain);
  EXPECT_NE(settings_digest({"--a=1", "--b"}, ""), plain);
}

// So that another version of the program reprocesses everything.
TEST(Settings, CountTheProgramsVersion) {
  const std::string version = lm::host::commands::parse_command_line({"--version"}).text;
  const std::string number = version.substr(12, version.size() - 13);  // "lightmotion 1.2.3\n"
  EXPECT_EQ(settings_digest({}, "{}"), digest(number + std::string(2, '\0') + "{}"));
}

TEST(OptionsForFolder, PutOutputsThereAndKeepTheRest) {
  EXPECT_EQ(options_for_folder({"--scale=2", "--annotate=a.mp4"}, "/w"),
            (Names{"--scale=2", "--annotate=/w/a.mp4", "--output=/w/results.jsonl", "--quiet"}));
  EXPECT_EQ(options_for_folder({"--quiet", "--output=x=y.jsonl"}, "/w"),
            (Names{"--quiet", "--output=/w/x=y.jsonl"}));
}

TEST(Cause, IsTheLastComplaintWithoutTheNamesAndWarnings) {
  const std::string messages =
      "W, H, Pixels = a line for developers\nlightmotion: warning: c.json: no effect\n"
      "lightmotion: /a b.mp4: ends early\nsomething else\n";
  EXPECT_EQ(cause_of(messages, 1, "/a b.mp4"), "ends early");
  EXPECT_EQ(cause_of(messages, 0, "/a b.mp4"), "");
  EXPECT_EQ(cause_of("lightmotion: /a b.mp4: contains no video\n", 1, "/a\nb.mp4"), "contains no video");
  EXPECT_EQ(cause_of("", 1, "/a"), "the process exited with status 1");
  EXPECT_EQ(cause_of(messages, 139, "/a b.mp4"),
            "the process was terminated by a signal: Segmentation fault");
}

TEST(Cause, IsNoWarning) {
  const std::string warning = "lightmotion: warning: camera busy\n";
  EXPECT_EQ(cause_of("lightmotion: /a.mp4: ends early\n" + warning, 1, "/a.mp4"), "ends early");
  EXPECT_EQ(cause_of(warning, 1, "/a.mp4"), "the process exited with status 1");
}

TEST(Table, ListsEachFileAndTheTotals) {
  const std::vector<TableRow> rows{
      {"/a.mp4", Outcome::kOk, figures(500, 450, 3, 20s), "a.mp4-1", ""},
      {"/b\nc.mp4", Outcome::kIncomplete, figures(1000, 1, 0, 3600s), "b_c.mp4-2", "ends early"},
      {"/d.mp4", Outcome::kFailed, std::nullopt, "", "contains no video"}};
  EXPECT_EQ(table_text(rows),
            "status        frames    motion    events    length  file\n"
            "ok               500       450         3      0:20  /a.mp4\n"
            "incomplete      1000         1         0   1:00:00  /b c.mp4: ends early\n"
            "failed             -         -         -         -  /d.mp4: contains no video\n"
            // 500 + 1000 frames, 450 + 1 with motion, 20 s + 1 h
            "3 files: 1 ok, 1 incomplete, 1 failed; 1500 frames, 451 with motion, 3 events, 1:00:20 of "
            "video\n");
}

TEST(Table, QuotesForPrograms) {
  const std::vector<TableRow> rows{
      {"/a,\"b\"\nc.mp4", Outcome::kIncomplete, figures(3, 1, 1, 120ms), "a-1", "this, that"},
      {"/d.mp4", Outcome::kFailed, std::nullopt, "", "contains no video"}};
  EXPECT_EQ(table_csv(rows),
            "source_name,status,frames,frames_with_boxes,event_count,length,results,error\r\n"
            "\"/a,\"\"b\"\"\nc.mp4\",incomplete,3,1,1,0.120,a-1,\"this, that\"\r\n"
            "/d.mp4,failed,,,,,,contains no video\r\n");
}

TEST(ArchiveProgress, EstimatesTheTimeLeftByBytes) {
  ArchiveState state{.files = 300, .done = 12, .failed = 0, .bytes_to_do = 1000};
  EXPECT_EQ(archive_progress_text(state), "12 of 300 files");
  // 250 bytes took 100 s, so 750 bytes take 300 s.
  state.bytes_done = 250;
  state.worked = 100s;
  state.failed = 2;
  EXPECT_EQ(archive_progress_text(state), "12 of 300 files  2 with problems  5:00 left");
  state.events = 7;
  EXPECT_EQ(archive_progress_text(state), "12 of 300 files  2 with problems  7 events  5:00 left");
  EXPECT_EQ(archive_progress_line(state),
            R"({"files":300,"files_done":12,"files_with_problems":2,"eta":300.000,"event_count":7})");
}

TEST(WorkFolder, HasOneOwnerAtATime) {
  const program::Folder folder;
  std::optional<WorkFolder> first = WorkFolder::claim(folder / "", "a");
  ASSERT_TRUE(first);
  EXPECT_FALSE(WorkFolder::claim(folder / "", "a"));
  EXPECT_TRUE(WorkFolder::claim(folder / "", "b"));
  first.reset();
  EXPECT_TRUE(WorkFolder::claim(folder / "", "a"));
}

TEST(WorkFolder, PublishesInPlaceOfOlderResultsAndLeavesNothingElse) {
  const program::Folder folder;
  std::filesystem::create_directory(folder / "a");
  program::write(folder / "a/old", "");
  {
    std::optional<WorkFolder> work = WorkFolder::claim(folder / "", "a");
    program::write(work->path() + "/new", "");
    EXPECT_TRUE(std::filesystem::exists(folder / "a/old"));
    work->publish();
  }
  EXPECT_EQ(folder.names(), Names{"a"});
  EXPECT_TRUE(std::filesystem::exists(folder / "a/new"));
  EXPECT_FALSE(std::filesystem::exists(folder / "a/old"));
}

TEST(WorkFolder, KeepsOlderResultsWithoutPublishing) {
  const program::Folder folder;
  std::filesystem::create_directory(folder / "a");
  program::write(WorkFolder::claim(folder / "", "a")->path() + "/new", "");
  EXPECT_EQ(folder.names(), Names{"a"});
  EXPECT_TRUE(std::filesystem::is_empty(folder / "a"));
}

TEST(WorkFolder, RemovesWhatAKilledRunLeft) {
  const program::Folder folder;
  std::filesystem::create_directories(folder / ".a.work/oldone/results");
  program::write(folder / ".a.work/oldone/results/half", "");
  EXPECT_EQ(folder.names(), Names{".a.work"});
  std::optional<WorkFolder> work = WorkFolder::claim(folder / "", "a");
  EXPECT_FALSE(std::filesystem::exists(folder / ".a.work/oldone"));
  EXPECT_TRUE(std::filesystem::is_empty(work->path()));
  work.reset();
  std::filesystem::create_directories(folder / ".a.work/oldone");
  WorkFolder::tidy(folder / "", "a");
  EXPECT_EQ(folder.names(), Names{});
}

}  // namespace
