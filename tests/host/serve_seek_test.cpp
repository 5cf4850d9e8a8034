// Seeking: the frames after a seek are those of plain reading.
#include <gtest/gtest.h>

#include <opencv2/core.hpp>

#include "host/commands/serve/still.h"
#include "tests/host/clips.h"
#include "tests/host/program.h"

namespace {

using namespace lm::host::commands::serve;
using namespace lm::host::source;
using namespace std::chrono_literals;
using program::Folder;

bool same(const cv::Mat& a, const cv::Mat& b) {
  return a.size() == b.size() && cv::norm(a, b, cv::NORM_INF) == 0;
}

// The frames from `time` on, from a partly read source.
std::vector<Frame> read_from(Source& source, std::chrono::microseconds time) {
  EXPECT_TRUE(source.seek(time));
  return clips::read(source);
}

class Leap : public testing::TestWithParam<const char*> {};

TEST_P(Leap, GivesTheFramesThatPlainReadingGives) {
  const Folder folder;
  const std::string file = folder / std::string("a") + GetParam();
  clips::Times times;  // irregular, and longer than one key frame interval
  for (int i = 0; i < 400; ++i) times.push_back(i * 40ms + (i % 3) * 7ms + 5s);
  clips::write(file, {64, 48}, times);
  const std::vector<Frame> plain = clips::read(file);
  ASSERT_EQ(plain.size(), times.size());
  const auto source = open_source(file);
  for (const std::size_t place : {200U, 3U, 399U, 0U, 370U, 1U}) {
    const std::vector<Frame> rest = read_from(*source, plain[place].time);
    ASSERT_EQ(rest.size(), plain.size() - place) << place;
    for (const std::size_t i : {std::size_t{0}, rest.size() / 2, rest.size() - 1}) {
      EXPECT_EQ(rest[i].time, plain[place + i].time) << place;
      EXPECT_TRUE(same(rest[i].image, plain[place + i].image)) << place << " + " << i;
      EXPECT_EQ(rest[i].note, "");
    }
  }
}

TEST_P(Leap, BetweenTwoFramesEndsAtTheLaterOne) {
  const Folder folder;
  const std::string file = folder / std::string("a") + GetParam();
  clips::write(file, {64, 48}, clips::regular(50, 40ms));
  const auto source = open_source(file);
  const std::vector<Frame> rest = read_from(*source, 401ms);
  ASSERT_FALSE(rest.empty());
  EXPECT_EQ(rest.front().time, 440ms);
  EXPECT_EQ(rest.front().number, 11);
  EXPECT_TRUE(read_from(*source, 3s).empty());
  EXPECT_EQ(read_from(*source, 0ms).size(), 50U);
}

INSTANTIATE_TEST_SUITE_P(All, Leap, testing::Values(".mp4", ".mov", ".mkv"),
                         [](const auto& format) { return std::string(format.param + 1); });

TEST(Seek, IsNotForWhatMayJumpInTime) {
  const Folder folder;
  std::string pictures;
  for (int i = 0; i < 5; ++i) pictures += clips::jpeg(clips::picture({64, 48}, i));
  program::write(folder / "a.mjpeg", pictures);
  EXPECT_FALSE(open_source(folder / "a.mjpeg")->seek(80ms));
}

TEST(Seek, InTheBuiltInSceneGivesTheSamePictures) {
  const auto plain = open_source("");
  Frame tenth;
  for (int i = 0; i <= 10; ++i) ASSERT_TRUE(plain->next(tenth));
  const auto source = open_source("");
  Frame frame;
  ASSERT_TRUE(source->seek(19s));
  ASSERT_TRUE(source->next(frame));
  EXPECT_EQ(frame.number, 475);  // 19 s at 25 frames per second
  ASSERT_TRUE(source->seek(399ms));
  ASSERT_TRUE(source->next(frame));
  EXPECT_EQ(frame.time, 400ms);
  EXPECT_TRUE(same(frame.image, tenth.image));
}

TEST(Seek, KeepsToTheFramesThatAreWanted) {
  const auto source = open_source("", {.fps = 5});
  Frame frame;
  ASSERT_TRUE(source->seek(10s));
  ASSERT_TRUE(source->next(frame));
  EXPECT_EQ(frame.time, 10s);
  ASSERT_TRUE(source->next(frame));
  EXPECT_EQ(frame.time, 10s + 200ms);
}

TEST(Still, IsTheFirstPictureNotBeforeTheMoment) {
  const Folder folder;
  clips::write(folder / "a.mp4", {64, 48}, clips::regular(50, 40ms));
  std::string pictures;
  for (int i = 0; i < 50; ++i) pictures += clips::jpeg(clips::picture({64, 48}, i));
  program::write(folder / "a.mjpeg", pictures);
  for (const char* name : {"a.mp4", "a.mjpeg"}) {
    Still still(folder / name, {});
    EXPECT_EQ(still.at(1s).time, 1s) << name;
    EXPECT_EQ(still.at(101ms).time, 120ms) << name;
    EXPECT_EQ(still.at(0s).time, 0s) << name;
    EXPECT_EQ(still.at(2s).time, 1960ms) << name << ": the last one";
    EXPECT_EQ(still.at(500s).time, 1960ms) << name << ": the last one";
  }
}

}  // namespace
