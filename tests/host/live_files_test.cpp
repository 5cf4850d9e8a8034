// Files of the kinds that cameras and editors produce, made with ffmpeg.
#include <gtest/gtest.h>

#include <cstdlib>

#include "tests/host/clips.h"
#include "tests/host/program.h"

namespace {

using program::Folder;

bool ffmpeg(const std::string& arguments) {
  return std::system(("ffmpeg -v error -nostdin -y " + arguments).c_str()) == 0;
}

bool has_ffmpeg() { return std::system("ffmpeg -version >/dev/null 2>&1") == 0; }

// Black on the left and white on the right.
std::string halves(int frames) {
  return "-f lavfi -i color=white:s=64x48:r=25,drawbox=0:0:32:48:black:fill -frames:v " +
         std::to_string(frames) + " ";
}

struct Kind {
  const char* name;
  const char* coding;
  const char* file;
};

class FileKind : public testing::TestWithParam<Kind> {};

TEST_P(FileKind, GivesAllItsPictures) {
  if (!has_ffmpeg()) GTEST_SKIP() << "needs ffmpeg";
  const Folder folder;
  const std::string file = folder / GetParam().file;
  ASSERT_TRUE(ffmpeg(halves(10) + GetParam().coding + " " + file));
  const auto frames = clips::read(file);
  ASSERT_EQ(frames.size(), 10U);
  for (const auto& frame : frames) {
    ASSERT_EQ(frame.image.size(), cv::Size(64, 48));
    EXPECT_LT(frame.image.at<cv::Vec3b>(24, 10)[1], 12);
    EXPECT_GT(frame.image.at<cv::Vec3b>(24, 53)[1], 243);
  }
}

INSTANTIATE_TEST_SUITE_P(
    Files, FileKind,
    testing::Values(Kind{"Interlaced", "-vf setfield=tff -c:v libx264 -flags +ildct+ilme", "a.mp4"},
                    Kind{"InterlacedMpeg2", "-vf setfield=tff -c:v mpeg2video -flags +ildct+ilme", "a.mpg"},
                    Kind{"TenBit", "-pix_fmt yuv420p10le -c:v libx264", "a.mp4"},
                    Kind{"Grey", "-pix_fmt gray -c:v ffv1", "a.mkv"},
                    Kind{"GreyTenBit", "-pix_fmt gray10le -c:v ffv1", "a.mkv"}),
    [](const auto& test) { return std::string(test.param.name); });

TEST(Files, OfAnotherSizeFromTheMiddleOnAreScaled) {
  if (!has_ffmpeg()) GTEST_SKIP() << "needs ffmpeg";
  const Folder folder;
  ASSERT_TRUE(ffmpeg(halves(5) + "-c:v libx264 " + (folder / "1.h264")));
  ASSERT_TRUE(ffmpeg(halves(5) + "-vf scale=128:96 -c:v libx264 " + (folder / "2.h264")));
  program::write(folder / "a.h264", program::read(folder / "1.h264") + program::read(folder / "2.h264"));
  const auto frames = clips::read(folder / "a.h264");
  ASSERT_EQ(frames.size(), 10U);
  EXPECT_EQ(frames.back().image.size(), cv::Size(64, 48));
  EXPECT_GT(frames.back().image.at<cv::Vec3b>(24, 53)[1], 243);
}

TEST(Files, WithSoundOnlyAreNotVideos) {
  if (!has_ffmpeg()) GTEST_SKIP() << "needs ffmpeg";
  const Folder folder;
  ASSERT_TRUE(ffmpeg("-f lavfi -i sine=d=0.5 -c:a aac " + (folder / "a.m4a")));
  const auto outcome = program::run_fake({folder / "a.m4a"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.errors, "lightmotion: " + (folder / "a.m4a") + ": contains no video\n");
}

TEST(Files, ThatAreEmptyAreNotVideos) {
  const Folder folder;
  program::write(folder / "a.mp4", "");
  const auto outcome = program::run_fake({folder / "a.mp4"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_TRUE(outcome.errors.starts_with("lightmotion: " + (folder / "a.mp4") + ": ")) << outcome.errors;
}

// The sixth frame is 500 intervals late: 501 * 0.04 s after the fifth.
TEST(Files, WithAGapHaveANote) {
  if (!has_ffmpeg()) GTEST_SKIP() << "needs ffmpeg";
  const Folder folder;
  ASSERT_TRUE(ffmpeg(halves(10) + "-vf \"setpts=if(gte(N\\,5)\\,N+500\\,N)/25/TB\" -fps_mode passthrough " +
                     (folder / "a.mkv")));
  const std::string note = "\"note\":\"no frame for 20.040 s\"";
  const auto outcome = program::run_fake({folder / "a.mkv"});
  EXPECT_EQ(outcome.status, 0) << outcome.errors;
  EXPECT_NE(outcome.output.find("{\"frame\":5,\"time\":20.200," + note + "}"), std::string::npos);
  EXPECT_NE(outcome.errors.find("at 20.200 s: no frame for 20.040 s"), std::string::npos) << outcome.errors;
  EXPECT_EQ(program::run_fake({folder / "a.mkv", "--max-gap", "21"}).output.find("note"), std::string::npos);
}

// Two seconds, twice: the clock jumps back from 1.96 s to 0, and the 51st frame is placed 0.04 s after the
// 50th.
TEST(Files, JoinedFromTwoRecordingsContinueWithANote) {
  if (!has_ffmpeg()) GTEST_SKIP() << "needs ffmpeg";
  const Folder folder;
  ASSERT_TRUE(ffmpeg(halves(50) + "-c:v mpeg2video " + (folder / "1.ts")));
  program::write(folder / "a.ts", program::read(folder / "1.ts") + program::read(folder / "1.ts"));
  const auto outcome = program::run_fake({folder / "a.ts"});
  EXPECT_NE(outcome.output.find("{\"frame\":50,\"time\":2.000,\"note\":\"the source's clock went back by "
                                "1.960 s; time continues from the last frame\"}"),
            std::string::npos)
      << outcome.errors;
}

// One in five of 25 frames per second; numbers and times remain those of the source.
TEST(Files, AreReducedInRateAndSize) {
  const Folder folder;
  clips::write(folder / "a.mp4", {64, 48}, clips::regular(20, std::chrono::milliseconds(40)));
  setenv("LIGHTMOTION_FAKE_CONFIGURATION", (folder / "seen.json").c_str(), 1);
  const auto outcome = program::run_fake({folder / "a.mp4", "--fps", "5", "--scale", "0.5", "-q"});
  unsetenv("LIGHTMOTION_FAKE_CONFIGURATION");
  EXPECT_EQ(outcome.status, 0) << outcome.errors;
  const auto lines = program::lines(outcome.output);
  ASSERT_EQ(lines.size(), 3U) << "frames 5, 10 and 15: the fake plug-in sees nothing in the first";
  EXPECT_TRUE(lines[0].starts_with("{\"frame\":5,\"time\":0.200,")) << lines[0];
  EXPECT_TRUE(lines[2].starts_with("{\"frame\":15,\"time\":0.600,")) << lines[2];
  EXPECT_NE(program::read(folder / "seen.json").find("\"32\""), std::string::npos);
}

}  // namespace
