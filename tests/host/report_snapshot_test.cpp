// The best frame of each event.
#include <gtest/gtest.h>

#include "host/base/failure.h"
#include "host/outputs/report/best_frames.h"
#include "host/outputs/report/image_bytes.h"
#include "host/outputs/report/output_names.h"
#include "host/outputs/report/snapshots.h"
#include "tests/host/clips.h"
#include "tests/host/program.h"

namespace {

using namespace lm::host::base;
using namespace lm::host::events;
using namespace lm::host::outputs::report;
using namespace lm::host::source;
using namespace std::chrono_literals;
using program::Folder;
using Names = std::vector<std::string>;

// One box as high as the frame, so that its width is its share.
Observation observed(std::int64_t frame, double share) {
  Observation seen;
  seen.frame = frame;
  seen.time = frame * 100ms;
  if (share > 0) seen.boxes = {{{0, 0, share, 1}}};
  return seen;
}

cv::Mat numbered(std::int64_t frame) { return cv::Mat(48, 64, CV_8UC3, cv::Scalar::all(double(10 * frame))); }

Event event_at(std::int64_t first, std::int64_t peak) {
  Event event;
  event.id = "a";
  event.first_frame = first;
  event.peak_frame = peak;
  event.start = first * 100ms;
  return event;
}

class Best : public testing::Test {
 protected:
  void see(double share) {
    image_.setTo(0);  // as when boxes are drawn into it
    image_ = numbered(next_);
    best_.frame(image_, observed(next_++, share));
  }

  BestFrames best_{1s, {64, 48}};
  cv::Mat image_ = numbered(0);
  std::int64_t next_ = 0;
};

TEST_F(Best, IsFoundAmongTheFramesBeforeTheEventWasAnnounced) {
  for (const double share : {0.9, 0.1, 0.2, 0.5, 0.3, 0.4}) see(share);
  best_.follow(event_at(1, 3));
  const Still still = best_.take(event_at(1, 3));
  EXPECT_EQ(still.frame, 3) << "the one before the event is larger but no part of it";
  EXPECT_EQ(still.time, 300ms);
  EXPECT_DOUBLE_EQ(still.share, 0.5);
  ASSERT_EQ(still.boxes.size(), 1U);
  EXPECT_EQ(still.image.at<cv::Vec3b>(5, 5), cv::Vec3b(30, 30, 30));
}

// Of eight frames, each with less under its box than the one before, all may turn out to be the best.
TEST_F(Best, IsFoundThoughAllFramesBeforeItWereBetter) {
  for (const double share : {0.9, 0.8, 0.7, 0.6, 0.5, 0.4, 0.3, 0.2}) see(share);
  best_.follow(event_at(7, 7));
  EXPECT_EQ(best_.take(event_at(7, 7)).frame, 7);
}

TEST_F(Best, IsReplacedWhenALargerOneComes) {
  for (const double share : {0.1, 0.2}) see(share);
  best_.follow(event_at(0, 1));
  see(0.15);
  best_.follow(event_at(0, 1));
  see(0.6);
  best_.follow(event_at(0, 3));
  see(0.5);
  best_.follow(event_at(0, 3));
  EXPECT_EQ(best_.take(event_at(0, 3)).frame, 3);
}

TEST_F(Best, OfEqualOnesIsTheFirst) {
  for (const double share : {0.4, 0.4, 0.4}) see(share);
  best_.follow(event_at(0, 0));
  see(0.4);
  best_.follow(event_at(0, 0));
  EXPECT_EQ(best_.take(event_at(0, 0)).frame, 0);
}

TEST_F(Best, IsKeptHoweverLongTheEventLasts) {
  see(0.8);
  best_.follow(event_at(0, 0));
  for (int i = 0; i < 100; ++i) {
    see(0.2);
    best_.follow(event_at(0, 0));
  }
  EXPECT_EQ(best_.take(event_at(0, 0)).frame, 0);
}

TEST_F(Best, ExistsForAnEventWithoutBoxes) {
  for (int i = 0; i < 30; ++i) see(0);
  best_.follow(event_at(28, 28));
  EXPECT_FALSE(best_.take(event_at(28, 28)).image.empty());
}

TEST_F(Best, OfAnEventThatNobodyFollowedIsEmpty) {
  see(0.5);
  EXPECT_TRUE(best_.take(event_at(0, 0)).image.empty());
}

TEST(Names, SortByTime) {
  Event event;
  event.start = 1h + 2min + 3s + 45ms;
  event.id = "0007";
  EXPECT_EQ(event_stem(event), "01h02m03.045s-0007-motion");
  event.kind = EventKind::kLight;
  event.id = "20260301T070509.006Z-0012";
  // 2026-03-01 is 20513 days after 1970-01-01: 56 years with 14 leap days, and 31 + 28.
  event.wall_start = WallTime{std::chrono::days(20513) + 7h + 5min + 9s + 6ms};
  EXPECT_EQ(event_stem(event), "2026-03-01T07-05-09.006Z-0012-light");
}

TEST(Snapshots, AreWrittenAsTheirEventsEnd) {
  const Folder folder;
  SourceInfo source;
  source.size = {64, 48};
  Snapshots snapshots(folder / "a/b", source, {});
  const double shares[] = {0, 0.25, 0.5, 0.25};
  for (int i = 0; i < 4; ++i) {
    Frame frame;
    frame.image = numbered(i);
    snapshots.frame(frame, observed(i, shares[i]));
    if (i == 2) snapshots.begun(event_at(1, 2));
    if (i == 3) snapshots.changed(event_at(1, 2));
  }
  EXPECT_TRUE(std::filesystem::is_empty(folder / "a/b"));
  snapshots.ended(event_at(1, 2));
  const std::string file = folder / "a/b/00h00m00.100s-a-motion.jpg";
  ASSERT_TRUE(std::filesystem::exists(file));
  EXPECT_TRUE(program::read(file).starts_with("\xff\xd8\xff"));
  const cv::Mat image = clips::still(file);
  ASSERT_EQ(image.size(), cv::Size(64, 48));
  EXPECT_NEAR(image.at<cv::Vec3b>(40, 50)[0], 20, 4) << "the frame at the peak";
  // Half of the frame is 32 pixels wide; the border is bright green.
  EXPECT_GT(image.at<cv::Vec3b>(30, 31)[1], 120);
}

TEST(Snapshots, OfALiveSourceAreSkippedWhileTheyCannotBeWritten) {
  const Folder folder;
  SourceInfo source;
  source.size = {64, 48};
  source.live = true;
  Snapshots snapshots(folder / "a", source, {});
  const auto event = [&](int i) {
    Frame frame;
    frame.image = numbered(i);
    snapshots.frame(frame, observed(i, 0.5));
    snapshots.begun(event_at(i, i));
    snapshots.ended(event_at(i, i));
  };
  std::filesystem::remove(folder / "a");
  testing::internal::CaptureStderr();
  event(0);
  std::filesystem::create_directory(folder / "a");
  event(1);
  const std::string log = testing::internal::GetCapturedStderr();
  EXPECT_NE(log.find("; the run continues and tries again\n"), std::string::npos) << log;
  EXPECT_NE(log.find(" can be written again; skipped in the meantime: 1\n"), std::string::npos) << log;
  EXPECT_TRUE(std::filesystem::exists(folder / "a/00h00m00.100s-a-motion.jpg"));
}

TEST(Snapshots, RefuseAFolderThatCannotBeMade) {
  const Folder folder;
  program::write(folder / "file", "");
  EXPECT_THROW(Snapshots(folder / "file", SourceInfo{}, {}), Failure);
  EXPECT_THROW(Snapshots(folder / "file/below", SourceInfo{}, {}), Failure);
}

TEST(ImageBytes, EveryShapeCanBeEncoded) {
  const Folder folder;
  for (const cv::Size size : {cv::Size(1, 1), cv::Size(3, 5), cv::Size(641, 2), cv::Size(64, 48)}) {
    const cv::Mat image(size, CV_8UC3, cv::Scalar(20, 120, 220));
    EXPECT_FALSE(jpeg_bytes(image, 3).empty()) << size;
    program::write(folder / "a.png", png_bytes(image));
    EXPECT_EQ(cv::norm(clips::still(folder / "a.png"), image, cv::NORM_INF), 0) << "PNG loses nothing";
  }
}

}  // namespace
