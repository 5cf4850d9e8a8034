// The video writer, and the reader with valid, unusual and broken files.
#include <gtest/gtest.h>

#include <bit>
#include <cstdint>

#include "host/base/failure.h"
#include "host/outputs/report/image_bytes.h"
#include "host/outputs/video_writer.h"
#include "host/source/ffmpeg_source.h"
#include "tests/host/clips.h"
#include "tests/host/program.h"

namespace {

using namespace lm::host::base;
using namespace lm::host::outputs::report;
using namespace lm::host::source;
using namespace std::chrono_literals;
using clips::Times;
using program::Folder;

std::string failure_of(const std::string& source) {
  try {
    open_source(source);
    return "no failure";
  } catch (const Failure& failure) {
    EXPECT_EQ(failure.status(), kTrouble);
    return failure.what();
  }
}

class Container : public testing::TestWithParam<const char*> {};

TEST_P(Container, KeepsUnevenTimes) {
  const Folder folder;
  const std::string file = folder / std::string("a") + GetParam();
  const Times times{0ms, 40ms, 113ms, 500ms, 501ms, 2s, 2040ms, 9s, 3600s};
  clips::write(file, {64, 48}, times);
  EXPECT_EQ(clips::times_of(clips::read(file)), times);
}

TEST_P(Container, CountsFromItsFirstFrame) {
  const Folder folder;
  const std::string file = folder / std::string("a") + GetParam();
  clips::write(file, {64, 48}, {5s, 5040ms, 5100ms});
  EXPECT_EQ(clips::times_of(clips::read(file)), (Times{0ms, 40ms, 100ms}));
}

INSTANTIATE_TEST_SUITE_P(All, Container, testing::Values(".mp4", ".mov", ".mkv"),
                         [](const auto& format) { return std::string(format.param + 1); });

TEST(Video, KeepsTimesFinerThanMilliseconds) {
  const Folder folder;
  // 30000/1001 frames per second; a tick of the file's clock is 11.1 us.
  Times times;
  for (int i = 0; i < 40; ++i) times.emplace_back(i * 1'001'000'000LL / 30'000);
  clips::write(folder / "a.mp4", {64, 48}, times);
  const Times found = clips::times_of(clips::read(folder / "a.mp4"));
  ASSERT_EQ(found.size(), times.size());
  for (std::size_t i = 0; i < times.size(); ++i)
    EXPECT_NEAR(double(found[i].count()), double(times[i].count()), 7);
}

TEST(Video, RewritingAFileKeepsItsTimesExactly) {
  const Folder folder;
  clips::write(folder / "a.mp4", {64, 48}, {0us, 33'367us, 66'733us, 1s});
  const Times first = clips::times_of(clips::read(folder / "a.mp4"));
  clips::write(folder / "b.mp4", {64, 48}, first);
  EXPECT_EQ(clips::times_of(clips::read(folder / "b.mp4")), first);
}

class Size : public testing::TestWithParam<cv::Size> {};

TEST_P(Size, IsKeptUpToTheEvenNumbersThatTheFormatNeeds) {
  const Folder folder;
  const cv::Size size = GetParam();
  clips::write(folder / "a.mp4", size, clips::regular(3, 40ms));
  const auto source = open_source(folder / "a.mp4");
  EXPECT_EQ(source->info().size, cv::Size(size.width + size.width % 2, size.height + size.height % 2));
  const auto frames = clips::read(*source);
  ASSERT_EQ(frames.size(), 3U);
  EXPECT_EQ(frames[2].image.size(), source->info().size);
  EXPECT_TRUE(frames[2].image.isContinuous());
  EXPECT_EQ(frames[2].image.type(), CV_8UC3);
}

INSTANTIATE_TEST_SUITE_P(All, Size,
                         testing::Values(cv::Size(1, 1), cv::Size(2, 2), cv::Size(17, 9), cv::Size(64, 48),
                                         cv::Size(101, 33), cv::Size(1, 50), cv::Size(641, 3)));

TEST(Video, KeepsPicturesAndColours) {
  const Folder folder;
  const cv::Mat image = clips::picture({160, 120}, 20);
  clips::write(folder / "a.mp4", {image, image}, {0ms, 40ms});
  const auto frames = clips::read(folder / "a.mp4");
  ASSERT_EQ(frames.size(), 2U);
  // The middle of the square (columns 40 to 69, rows 30 to 59) and a point on the background.
  for (const cv::Point place : {cv::Point(55, 45), cv::Point(120, 90)}) {
    const auto expected = image.at<cv::Vec3b>(place);
    const auto found = frames[1].image.at<cv::Vec3b>(place);
    for (int c = 0; c < 3; ++c) EXPECT_NEAR(found[c], expected[c], 8) << place << " channel " << c;
  }
}

TEST(Video, FileDescribesItself) {
  const Folder folder;
  clips::write(folder / "a.mp4", {64, 48}, clips::regular(50, 40ms));
  const auto source = open_source(folder / "a.mp4");
  EXPECT_EQ(source->info().name, folder / "a.mp4");
  EXPECT_FALSE(source->info().live);
  EXPECT_NEAR(source->info().rate, 25, 0.1);
  ASSERT_TRUE(source->info().duration);
  EXPECT_NEAR(double(source->info().duration->count()), 2e6, 1e5);
  clips::read(*source);
  EXPECT_EQ(source->trouble(), "");
}

TEST(Video, APathMayHoldAColon) {
  const Folder folder;
  clips::write(folder / "a:b.mp4", {64, 48}, clips::regular(2, 40ms));
  EXPECT_EQ(clips::read(folder / "a:b.mp4").size(), 2U);
}

TEST(Video, NamesWhatCannotBeOpened) {
  const Folder folder;
  program::write(folder / "text", std::string(5000, 'a'));
  program::write(folder / "empty", "");
  EXPECT_EQ(failure_of(folder / "none"), (folder / "none") + ": No such file or directory");
  EXPECT_EQ(failure_of(folder / "."), (folder / ".") + ": Is a directory");
  EXPECT_EQ(failure_of(folder / "text"), (folder / "text") + ": not a video, or too damaged to read");
  EXPECT_TRUE(failure_of(folder / "empty").starts_with((folder / "empty") + ": "));
}

// With its lowest byte first.
std::string number(std::uint32_t value, int bytes) {
  std::string text;
  for (int i = 0; i < bytes; ++i) text += static_cast<char>(value >> (8 * i) & 0xff);
  return text;
}

// One second of silence as an uncompressed sound file.
TEST(Video, NamesAFileThatHoldsNone) {
  const Folder folder;
  program::write(folder / "a.wav", "RIFF" + number(36 + 16'000, 4) + "WAVEfmt " + number(16, 4) +
                                       number(1, 2) + number(1, 2) + number(8000, 4) + number(16'000, 4) +
                                       number(2, 2) + number(16, 2) + "data" + number(16'000, 4) +
                                       std::string(16'000, '\0'));
  EXPECT_EQ(failure_of(folder / "a.wav"), (folder / "a.wav") + ": contains no video");
}

TEST(Video, ASinglePictureIsRefusedBecauseItCannotMove) {
  const Folder folder;
  const cv::Mat image(48, 64, CV_8UC3, cv::Scalar(20, 120, 220));
  program::write(folder / "a.png", png_bytes(image));
  program::write(folder / "a.jpg", clips::jpeg(image));
  program::write(folder / "unnamed", png_bytes(image));
  for (const char* name : {"a.png", "a.jpg", "unnamed"})
    EXPECT_EQ(failure_of(folder / name), (folder / name) +
                                             ": a single picture cannot move; give a video or a picture "
                                             "sequence such as frame%04d.png");
}

TEST(Video, PicturesInARowAreAVideo) {
  const Folder folder;
  for (int i = 0; i < 3; ++i) {
    const cv::Mat image(48, 64, CV_8UC3, cv::Scalar::all(i));
    program::write(folder / ("a" + std::to_string(i) + ".png"), png_bytes(image));
  }
  const auto frames = clips::read(folder / "a%d.png");
  ASSERT_EQ(frames.size(), 3U);
  for (int i = 0; i < 3; ++i) EXPECT_EQ(frames[std::size_t(i)].image.at<cv::Vec3b>(9, 9)[1], i);
}

void cut(const std::string& file, double part) {
  std::filesystem::resize_file(file,
                               static_cast<std::uintmax_t>(double(std::filesystem::file_size(file)) * part));
}

TEST_P(Container, ThatWasCutOffGivesWhatIsThereAndSaysSo) {
  const Folder folder;
  const std::string file = folder / std::string("a") + GetParam();
  clips::write_busy(file, {64, 48}, 100);
  cut(file, 0.6);
  const auto source = open_source(file);
  const auto frames = clips::read(*source);
  EXPECT_GT(frames.size(), 30U);
  EXPECT_LT(frames.size(), 80U);
  EXPECT_FALSE(source->trouble().empty());
}

// The trouble with a file of two frames, the last of which ends at `end`, that states another length: in
// milliseconds, as a number of eight bytes with the highest first, after the name and size of its element.
std::string trouble_of(std::chrono::milliseconds end, double stated) {
  const Folder folder;
  const std::string file = folder / "a.mkv";
  clips::write(file, {64, 48}, {0ms, end - 40ms});
  std::string bytes = program::read(file);
  const std::size_t length = bytes.find("\x44\x89\x88") + 3;
  for (std::size_t i = 0; i < 8; ++i)
    bytes[length + i] = static_cast<char>(std::bit_cast<std::uint64_t>(stated) >> (56 - 8 * i) & 0xff);
  program::write(file, bytes);
  const auto source = open_source(file);
  EXPECT_EQ(clips::read(*source).size(), 2U);
  return source->trouble();
}

// By a fiftieth of its length; at least half a second.
TEST(Video, MayEndAFiftiethEarly) {
  EXPECT_EQ(trouble_of(98s, 100'000), "");
  EXPECT_EQ(trouble_of(97'999ms, 100'000), "ends early, after 97.999 of 100.000 s");
  EXPECT_EQ(trouble_of(9500ms, 10'000), "");
  EXPECT_EQ(trouble_of(9499ms, 10'000), "ends early, after 9.499 of 10.000 s");
}

TEST(Video, DamageInTheMiddleIsCountedAndPassedOver) {
  const Folder folder;
  clips::write_busy(folder / "a.mp4", {64, 48}, 100);
  std::string bytes = program::read(folder / "a.mp4");
  for (std::size_t i = bytes.size() / 2; i < bytes.size() / 2 + 3000; ++i)
    bytes[i] = static_cast<char>(i * 89);
  program::write(folder / "a.mp4", bytes);
  const auto source = open_source(folder / "a.mp4");
  EXPECT_GT(clips::read(*source).size(), 50U);
  EXPECT_NE(source->trouble().find("could not be decoded, first: "), std::string::npos) << source->trouble();
}

TEST(Video, PicturesOfAnotherSizeAreScaledToTheFirst) {
  const Folder folder;
  const std::string first = clips::jpeg(clips::picture({64, 48}, 0));
  const std::string second = clips::jpeg(cv::Mat(96, 160, CV_8UC3, cv::Scalar(0, 0, 255)));
  program::write(folder / "a.mjpeg", first + second + first);
  const auto frames = clips::read(folder / "a.mjpeg");
  ASSERT_EQ(frames.size(), 3U);
  for (const Frame& frame : frames) EXPECT_EQ(frame.image.size(), cv::Size(64, 48));
  EXPECT_NEAR(frames[1].image.at<cv::Vec3b>(24, 32)[2], 255, 6);
  EXPECT_NEAR(frames[1].image.at<cv::Vec3b>(24, 32)[0], 0, 6);
}

TEST(Video, FramesWithoutTimesFollowTheNominalRate) {
  const Folder folder;
  const std::string picture = clips::jpeg(clips::picture({64, 48}, 0));
  program::write(folder / "a.mjpeg", picture + picture + picture);
  EXPECT_EQ(clips::times_of(clips::read(folder / "a.mjpeg")), clips::regular(3, 40ms));
}

std::string chunk(const std::string& name, const std::string& content) {
  return name + number(static_cast<std::uint32_t>(content.size()), 4) + content +
         std::string(content.size() % 2, '\0');
}

// The rate found in an AVI file of three pictures that states this many frames in so many seconds.
double rate_found(std::uint32_t frames, std::uint32_t seconds) {
  const std::string header = "vidsMJPG" + std::string(12, '\0') + number(seconds, 4) + number(frames, 4) +
                             number(0, 4) + number(3, 4) + std::string(20, '\0');
  const std::string format = number(40, 4) + number(64, 4) + number(48, 4) + number(1, 2) + number(24, 2) +
                             "MJPG" + std::string(20, '\0');
  const std::string stream = chunk("LIST", "strl" + chunk("strh", header) + chunk("strf", format));
  const std::string picture = chunk("00dc", clips::jpeg(clips::picture({64, 48}, 0)));
  const Folder folder;
  program::write(
      folder / "a.avi",
      chunk("RIFF", "AVI " + chunk("LIST", "hdrl" + chunk("avih", std::string(56, '\0')) + stream) +
                        chunk("LIST", "movi" + picture + picture + picture)));
  return open_source(folder / "a.avi")->info().rate;
}

TEST(Video, ImplausibleRatesAreNotTaken) {
  EXPECT_EQ(rate_found(25, 1), 25);
  EXPECT_EQ(rate_found(1000, 1), 1000);
  EXPECT_EQ(rate_found(1001, 1), 0);
  EXPECT_EQ(rate_found(1, 100'000), 1e-5);
  EXPECT_EQ(rate_found(1, 100'001), 0);
}

// Sets the file's track header to a clockwise rotation by 90 degrees: the matrix that takes (x, y) to (-y,
// x), after 40 bytes of other fields.
void mark_as_turned(const std::string& file) {
  std::string bytes = program::read(file);
  const std::size_t matrix = bytes.find("tkhd") + 4 + 40;
  const std::string one("\0\1\0\0", 4);
  const std::string minus_one("\xff\xff\0\0", 4);
  const std::string zero(4, '\0');
  bytes.replace(matrix, 20, zero + one + zero + minus_one + zero);
  program::write(file, bytes);
}

TEST(Video, IsTurnedAsItsCameraAsked) {
  const Folder folder;
  cv::Mat image(48, 96, CV_8UC3, cv::Scalar(200, 0, 0));
  image(cv::Rect(0, 0, 48, 48)) = cv::Scalar(0, 0, 200);  // red on the left, which becomes the top
  clips::write(folder / "a.mp4", {image, image}, {0ms, 40ms});
  mark_as_turned(folder / "a.mp4");
  const auto source = open_source(folder / "a.mp4");
  EXPECT_EQ(source->info().size, cv::Size(48, 96));
  const auto frames = clips::read(*source);
  ASSERT_EQ(frames.size(), 2U);
  EXPECT_GT(frames[0].image.at<cv::Vec3b>(20, 24)[2], 150);
  EXPECT_GT(frames[0].image.at<cv::Vec3b>(76, 24)[0], 150);
}

TEST(Live, IsWhatComesFromCamerasAndNetworks) {
  for (const char* name : {"rtsp://host/1", "http://host/a", "https://host/a", "udp://@:5000", "tcp://host:1",
                           "/dev/video0", "/dev/v4l/by-id/usb"}) {
    EXPECT_TRUE(is_live(name)) << name;
  }
  for (const char* name : {"", "street.avi", "/home/a.mp4", "rtsp.avi", "file:///a.mp4"}) {
    EXPECT_FALSE(is_live(name)) << name;
  }
}

TEST(Live, ACameraThatIsNotThereIsNamed) {
  EXPECT_EQ(failure_of("/dev/video99"), "/dev/video99: No such file or directory");
}

}  // namespace
