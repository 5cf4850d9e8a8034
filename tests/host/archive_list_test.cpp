// Which files an archive run processes, their results' names, and how they are divided into shards.
#include <gtest/gtest.h>

#include <cstdlib>

#include "host/base/failure.h"
#include "host/commands/archive/file_list.h"
#include "host/commands/archive/folder_name.h"
#include "host/commands/archive/shard.h"
#include "tests/host/program.h"

namespace {

using namespace lm::host::base;
using namespace lm::host::commands::archive;
namespace fs = std::filesystem;
using Names = std::vector<std::string>;

// A folder with empty files: only their names matter.
class FileList : public testing::Test {
 protected:
  void SetUp() override {
    fs::create_directories(folder_ / "in/deep/er");
    fs::create_directories(folder_ / "in/.hidden");
    for (const char* name : {"in/b.mp4", "in/a.AVI", "in/notes.txt", "in/mp4", "in/.c.mp4",
                             "in/deep/er/d.mkv", "in/.hidden/e.mp4", "other.mp4"}) {
      program::write(folder_ / name, "");
    }
  }

  // As paths below the test's folder, with symbolic links resolved.
  Names listed(const Names& sources) {
    const std::string root = fs::canonical(folder_ / "in").parent_path().string() + "/";
    Names names;
    for (const ArchiveFile& file : list_files(sources, folder_ / "in/results")) {
      EXPECT_TRUE(file.path.starts_with(root)) << file.path;
      names.push_back(file.path.substr(root.size()) + (file.why.empty() ? "" : ": " + file.why));
    }
    return names;
  }

  std::string list(const char* name) { return std::string("@").append(folder_ / name); }

  std::string refusal(const std::string& source) {
    try {
      list_files({source}, folder_ / "results");
    } catch (const Failure& failure) {
      EXPECT_EQ(failure.status(), kRefused);
      return failure.what();
    }
    return "accepted";
  }

  program::Folder folder_;
};

TEST_F(FileList, TakesVideosFromFoldersAtAnyDepthInOrder) {
  EXPECT_EQ(listed({folder_ / "in"}), (Names{"in/a.AVI", "in/b.mp4", "in/deep/er/d.mkv"}));
}

TEST_F(FileList, TakesNamedFilesWhateverTheirNames) {
  EXPECT_EQ(listed({folder_ / "in/notes.txt", folder_ / "in/.c.mp4"}), (Names{"in/.c.mp4", "in/notes.txt"}));
}

TEST_F(FileList, NamesAFileOnceHoweverOftenItIsFound) {
  fs::create_symlink(folder_ / "in/b.mp4", folder_ / "in/link.mp4");
  EXPECT_EQ(listed({folder_ / "in/deep/../b.mp4", folder_ / "in/*.mp4", folder_ / "in/b.mp4"}),
            Names{"in/b.mp4"});
}

TEST_F(FileList, LeavesTheResultsOut) {
  fs::create_directories(folder_ / "in/results/x");
  program::write(folder_ / "in/results/x/annotated.mp4", "");
  EXPECT_EQ(listed({folder_ / "in"}), (Names{"in/a.AVI", "in/b.mp4", "in/deep/er/d.mkv"}));
  EXPECT_EQ(listed({folder_ / "in/*s*", folder_ / "other.mp4"}), (Names{"in/notes.txt", "other.mp4"}));
}

TEST_F(FileList, DoesNotFollowLinksToFolders) {
  fs::create_directory_symlink("deep", folder_ / "in/link");
  fs::create_directory_symlink(".", folder_ / "in/loop");
  EXPECT_EQ(listed({folder_ / "in"}), (Names{"in/a.AVI", "in/b.mp4", "in/deep/er/d.mkv"}));
  fs::create_directory(folder_ / "elsewhere");
  program::write(folder_ / "elsewhere/f.mp4", "");
  fs::create_directory_symlink("../elsewhere", folder_ / "in/away");
  EXPECT_EQ(listed({folder_ / "in"}), (Names{"in/a.AVI", "in/b.mp4", "in/deep/er/d.mkv"}));
}

TEST_F(FileList, TakesWhatAPatternMatches) {
  EXPECT_EQ(listed({folder_ / "in/[ab].*"}), (Names{"in/a.AVI", "in/b.mp4"}));
  EXPECT_EQ(listed({folder_ / "*/deep"}), Names{"in/deep/er/d.mkv"});
}

TEST_F(FileList, TakesAFileWhoseNameLooksLikeAPattern) {
  program::write(folder_ / "in/[ab].mp4", "");
  EXPECT_EQ(listed({folder_ / "in/[ab].mp4"}), Names{"in/[ab].mp4"});
}

TEST_F(FileList, ReadsListsOfPaths) {
  program::write(folder_ / "list",
                 (folder_ / "other.mp4") + "\r\n\n" + (folder_ / "in/deep") + "\n" + (folder_ / "in/b.mp4"));
  EXPECT_EQ(listed({list("list")}), (Names{"in/b.mp4", "in/deep/er/d.mkv", "other.mp4"}));
}

TEST_F(FileList, ReadsListsThatEndNamesWithAZeroByte) {
  program::write(folder_ / "in/line\nfeed.mp4", "");
  program::write(folder_ / "list", (folder_ / "in/line\nfeed.mp4") + '\0' + (folder_ / "in/b.mp4") + '\0');
  EXPECT_EQ(listed({list("list")}), (Names{"in/b.mp4", "in/line\nfeed.mp4"}));
}

TEST_F(FileList, NamesWhatCannotBeUsed) {
  fs::create_symlink("nowhere", folder_ / "in/broken.mp4");
  EXPECT_EQ(listed({folder_ / "none.mp4", folder_ / "in"}),
            (Names{"in/a.AVI", "in/b.mp4", "in/broken.mp4: No such file or directory", "in/deep/er/d.mkv",
                   "none.mp4: No such file or directory"}));
  EXPECT_EQ(list_files({"/dev/null"}, "results").front().why, "not a regular file");
}

TEST_F(FileList, RefusesInvalidSources) {
  EXPECT_EQ(refusal("rtsp://camera/1"), "rtsp://camera/1: --out needs files, not stream addresses");
  EXPECT_EQ(refusal(folder_ / "*.webm"), (folder_ / "*.webm") + " matches no file");
  EXPECT_EQ(refusal(list("none")),
            "the list " + (folder_ / "none") + " cannot be read: No such file or directory");
  EXPECT_EQ(refusal(list("in")), "the list " + (folder_ / "in") + " cannot be read: Is a directory");
  EXPECT_EQ(refusal(folder_ / "in/.hidden/.."), "accepted");
  EXPECT_EQ(refusal(folder_ / "in/deep/er/../../.hidden"), "accepted") << "named, so not left out";
  program::write(folder_ / "empty", "");
  EXPECT_EQ(refusal(list("empty")), "no video files found");
}

TEST(Digest, IsThePublishedFunction) {
  EXPECT_EQ(digest(""), "cbf29ce484222325");
  EXPECT_EQ(digest("a"), "af63dc4c8601ec8c");
  EXPECT_EQ(digest("foobar"), "85944171f73967e8");
}

TEST(FolderName, IsTheFilesOwnAndTheDigestOfItsPath) {
  EXPECT_EQ(folder_name("foobar"), "foobar-85944171f73967e8");
  EXPECT_EQ(folder_name("/cam/hall 1.mp4"), "hall_1.mp4-" + digest("/cam/hall 1.mp4"));
}

TEST(FolderName, KeepsWhatIsSafeEverywhere) {
  const auto readable = [](const std::string& file) {
    const std::string name = folder_name(std::string("/dir/").append(file));
    return name.substr(0, name.rfind('-'));
  };
  EXPECT_EQ(readable("a'b\"c\nd*.mp4"), "a_b_c_d_.mp4");
  EXPECT_EQ(readable("Z\u00fcrich_\u6771-9.mp4"), "Z\u00fcrich_\u6771-9.mp4");
  EXPECT_EQ(readable(".hidden.mp4"), "_hidden.mp4");
  EXPECT_EQ(readable("-rf"), "_rf");
  EXPECT_EQ(readable(std::string(101, 'x')), std::string(100, 'x'));
  EXPECT_EQ(readable(std::string(99, 'x').append("\u00fc")), std::string(99, 'x')) << "no half character";
}

TEST(FolderName, DistinguishesFilesOfOneName) {
  EXPECT_NE(folder_name("/a/clip.mp4"), folder_name("/b/clip.mp4"));
  EXPECT_NE(folder_name("/a/x y.mp4"), folder_name("/a/x_y.mp4"));
}

std::string shard_refusal(const std::string& text) {
  try {
    parse_shard(text);
  } catch (const Failure& failure) {
    return failure.what();
  }
  return "accepted";
}

TEST(Shard, IsCountedFromOne) {
  const Shard shard = parse_shard("2/3");
  EXPECT_EQ(shard.index, 1U);
  EXPECT_EQ(shard.count, 3U);
  EXPECT_TRUE(belongs(shard, 1) && belongs(shard, 4) && belongs(shard, 7));
  EXPECT_FALSE(belongs(shard, 0) || belongs(shard, 2) || belongs(shard, 3));
  EXPECT_EQ(parse_shard("").count, 1U);
}

TEST(Shard, RefusesWhatIsNone) {
  for (const char* text : {"0/3", "4/3", "1", "1/", "/2", "-1/2", "1/2x", "a/b", "1/2/3"}) {
    EXPECT_EQ(shard_refusal(text),
              std::string("--shard must be I/N with I from 1 to N, or slurm, not ") + text);
  }
}

class SlurmShard : public testing::Test {
 protected:
  void TearDown() override {
    for (const char* name : {"ID", "COUNT", "MIN", "STEP"}) unsetenv(variable(name).c_str());
  }
  static std::string variable(const char* name) { return std::string("SLURM_ARRAY_TASK_") + name; }
  static void array(const char* id, const char* count, const char* first, const char* step) {
    setenv(variable("ID").c_str(), id, 1);
    setenv(variable("COUNT").c_str(), count, 1);
    setenv(variable("MIN").c_str(), first, 1);
    setenv(variable("STEP").c_str(), step, 1);
  }
};

TEST_F(SlurmShard, CountsFromWhereTheArrayStartsInItsSteps) {
  array("0", "4", "0", "1");
  EXPECT_EQ(parse_shard("slurm").index, 0U);
  array("30", "4", "10", "10");  // --array=10-40:10
  EXPECT_EQ(parse_shard("slurm").index, 2U);
  EXPECT_EQ(parse_shard("slurm").count, 4U);
}

TEST_F(SlurmShard, IsRefusedOutsideOfAnArrayAndWhereTheArrayHasGaps) {
  EXPECT_EQ(shard_refusal("slurm"), "--shard slurm: SLURM_ARRAY_TASK_ID is not a number");
  array("7", "2", "3", "1");  // --array=3,7
  EXPECT_NE(shard_refusal("slurm").find("the job array has gaps"), std::string::npos);
}

TEST_F(SlurmShard, IsRefusedWhereTheTaskIsNotOnTheArraysSteps) {
  const std::string gaps = "--shard slurm: the job array has gaps, so some files would not be processed";
  array("25", "4", "10", "10");
  EXPECT_EQ(shard_refusal("slurm"), gaps) << "between 20 and 30";
  array("9", "4", "10", "10");
  EXPECT_EQ(shard_refusal("slurm"), gaps) << "before the first";
  array("50", "4", "10", "10");
  EXPECT_EQ(shard_refusal("slurm"), gaps) << "after the last, 40";
  array("10", "4", "10", "0");
  EXPECT_EQ(shard_refusal("slurm"), gaps) << "no step at all";
}

}  // namespace
