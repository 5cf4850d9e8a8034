// Limits of what a live source leaves on the disk, and messages when it cannot be written.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "host/base/outage.h"
#include "host/base/quantity.h"
#include "host/base/rotation.h"
#include "host/outputs/retention/sweep.h"
#include "tests/host/program.h"

namespace {

using namespace lm::host::base;
using namespace lm::host::outputs::retention;
using namespace std::chrono_literals;
using program::Folder;
using Names = std::vector<std::string>;

TEST(Quantity, IsASizeWithItsUnit) {
  EXPECT_EQ(parse_size("50GB"), 50'000'000'000U);
  EXPECT_EQ(parse_size("1.5kB"), 1500U);
  EXPECT_EQ(parse_size("7B"), 7U);
  for (const char* wrong : {"", "5", "GB", "0GB", "-1GB", "5 GB", "5GiB", "5gb", "1e300TB", "nanGB"})
    EXPECT_FALSE(parse_size(wrong)) << wrong;
  EXPECT_EQ(size_text(999), "999 B");
  EXPECT_EQ(size_text(1'250'000), "1.3 MB");
  EXPECT_EQ(size_text(50'000'000'000), "50 GB");
}

TEST(Quantity, IsAnAgeWithItsUnit) {
  EXPECT_EQ(parse_age("30d"), 30 * 24h);
  EXPECT_EQ(parse_age("1.5h"), 90min);
  EXPECT_EQ(parse_age("2w"), 14 * 24h);
  EXPECT_EQ(parse_age("10min"), 10min);
  for (const char* wrong : {"", "30", "d", "0d", "-1d", "30m", "30 d", "101e0y", "1e9w"})
    EXPECT_FALSE(parse_age(wrong)) << wrong;
}

TEST(Rotation, IsADayOrASize) {
  EXPECT_TRUE(parse_rotation("day")->daily);
  EXPECT_EQ(parse_rotation("1MB")->bytes, 1'000'000U);
  for (const char* wrong : {"", "days", "hour", "1"}) EXPECT_FALSE(parse_rotation(wrong)) << wrong;
}

TEST(Rotation, KnowsTheNamesThatItGives) {
  const WallTime time(1'700'000'000'123ms);  // 2023-11-14 22:13:20 UTC
  EXPECT_EQ(rotated_name("x/a.jsonl", {true, 0}, time), "x/a-2023-11-14.jsonl");
  EXPECT_EQ(rotated_name("a", {false, 5}, time), "a-2023-11-14T22-13-20Z");
  EXPECT_EQ(rotated_at("a.jsonl", "a-2023-11-14.jsonl"), "2023-11-14T23-59-59");
  EXPECT_EQ(rotated_at("a.jsonl", "a-2023-11-14-2.jsonl"), "2023-11-14T23-59-59");
  EXPECT_EQ(rotated_at("a.jsonl", "a-2023-11-14T22-13-20Z.jsonl"), "2023-11-14T22-13-20");
  EXPECT_EQ(rotated_at("a.jsonl", "a-2023-11-14T22-13-20Z-12.jsonl"), "2023-11-14T22-13-20");
  for (const char* other : {"a.jsonl", "a-.jsonl", "b-2023-11-14.jsonl", "a-2023-11-14.csv", "a-2023-11-14",
                            "a-2023-11-1x.jsonl", "a-2023-11-14-.jsonl", "a-2023-11-14x.jsonl",
                            "a-2023-11-14T22-13-20.jsonl", "a-events-2023-11-14.jsonl"})
    EXPECT_EQ(rotated_at("a.jsonl", other), "") << other;
}

TEST(Outage, IsReportedOnceAndWhenItIsOver) {
  Deadline::Clock::time_point now{};
  Outage outage("clips", [&] { return now; });
  const auto log_of = [&](const auto& action) {
    testing::internal::CaptureStderr();
    action();
    return testing::internal::GetCapturedStderr();
  };
  const auto fails = [&] { outage.attempt([] { throw Failure(kTrouble, "clips: full"); }); };
  EXPECT_EQ(log_of([&] { outage.worked(); }), "");
  EXPECT_EQ(log_of(fails), "lightmotion: warning: clips: full; the run continues and tries again\n");
  EXPECT_EQ(log_of(fails), "");
  EXPECT_EQ(log_of([&] { outage.worked(); }),
            "lightmotion: warning: clips can be written again; skipped in the meantime: 2\n");
  EXPECT_EQ(log_of(fails), "") << "not again within a minute";
  now += 61s;
  EXPECT_NE(log_of(fails), "") << "but if it lasts";
  EXPECT_TRUE(outage.attempt([] {}));
  EXPECT_THROW(outage.attempt([] { throw std::bad_alloc(); }), std::bad_alloc);
}

class Swept : public testing::Test {
 protected:
  std::string put(const std::string& name, std::size_t bytes = 10) const {
    program::write(folder_ / name, std::string(bytes, 'x'));
    return name;
  }
  auto sweep(const Limits& limits, WallTime now = kNow) const {
    return lm::host::outputs::retention::sweep({{folder_ / "", folder_ / "."}, {folder_ / "a.jsonl"}}, limits,
                                               now);
  }

  static constexpr WallTime kNow{std::chrono::days(19'675)};  // 2023-11-14
  const Folder folder_;
};

TEST_F(Swept, FilesAreTheOldestByTheTimesInTheirNames) {
  const std::string clip = put("2023-11-10T08-00-00.000Z-0003-motion.mp4");
  const std::string shot = put("2023-11-10T08-00-00.000Z-0003-motion.jpg");
  const std::string lines = put("a-2023-11-10.jsonl");  // up to the end of that day
  put("2023-11-11T00-00-00.000Z-0001-light.mp4");
  const auto swept = sweep({72h, {}});
  EXPECT_EQ(folder_.names(), Names{"2023-11-11T00-00-00.000Z-0001-light.mp4"})
      << "exactly three days are kept";
  EXPECT_EQ(swept.files, 3U);
  EXPECT_EQ(report(swept), "removed 3 files (30 B) beyond --keep or --keep-size: " + (folder_ / shot) +
                               " to " + (folder_ / lines));
}

TEST_F(Swept, FilesFitTheSizeAfterwards) {
  put("2023-11-10T08-00-00.000Z-0001-motion.mp4", 50);
  put("2023-11-10T09-00-00.000Z-0002-motion.mp4", 30);
  put("2023-11-10T10-00-00.000Z-0003-motion.mp4", 20);
  EXPECT_EQ(sweep({{}, 100}).files, 0U) << "folders named twice count once";
  EXPECT_EQ(sweep({{}, 99}).files, 1U);
  EXPECT_EQ(sweep({{}, 50}).files, 0U);
  EXPECT_EQ(sweep({{}, 1}).files, 2U);
  EXPECT_EQ(folder_.names(), Names{});
}

TEST_F(Swept, FilesAreOnlyThoseThatTheProgramNamed) {
  const Names others{put("2023-11-10T08-00-00.000Z-0003-motion.txt"),
                     put("2023-11-10T08-00-00.000Z-003-motion.mp4"),
                     put("2023-11-10T08-00-00.000Z-0003-motion.mp4.bak"),
                     put("a.jsonl"),
                     put("b-2023-11-10.jsonl"),
                     put("holiday.mp4")};
  std::filesystem::create_directory(folder_ / "2023-11-10T08-00-00.000Z-0004-motion.mp4");
  EXPECT_EQ(sweep({1s, 1}).files, 0U);
  EXPECT_EQ(folder_.names().size(), others.size() + 1);
}

TEST_F(Swept, FilesIncludeAbandonedPartsButNotThoseBeingWritten) {
  put(".2023-11-10T08-00-00.000Z-0003-motion.mp4.77-0.part");
  put(".b.mp4.77-0.part");
  struct stat facts {};
  ASSERT_EQ(stat((folder_ / ".b.mp4.77-0.part").c_str(), &facts), 0);
  const auto written = std::chrono::system_clock::from_time_t(facts.st_mtime);
  sweep({1s, 1}, written + 24h);
  EXPECT_EQ(folder_.names().size(), 2U);
  sweep({1s, 1}, written + 24h + 1s);
  EXPECT_EQ(folder_.names(), Names{".b.mp4.77-0.part"});
}

}  // namespace
