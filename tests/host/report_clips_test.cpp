// Clips copied from a file or recorded from frames.
#include <gtest/gtest.h>
#include <json/json.h>

#include <algorithm>
#include <cmath>
#include <sstream>

#include "host/outputs/report/clip_copier.h"
#include "host/outputs/report/clip_recorder.h"
#include "host/outputs/report/clips.h"
#include "host/source/av.h"
#include "tests/host/clips.h"
#include "tests/host/program.h"

namespace {

using namespace lm::host::base;
using namespace lm::host::events;
using namespace lm::host::outputs::report;
using namespace lm::host::source;
using namespace std::chrono_literals;
using program::Folder;
using std::chrono::microseconds;
using Names = std::vector<std::string>;

struct Packet {
  AVMediaType type;
  double time;  // seconds
  bool key;
  std::string bytes;
};

std::vector<Packet> packets(const std::string& file) {
  AVFormatContext* opened = nullptr;
  std::vector<Packet> found;
  if (avformat_open_input(&opened, ("file:" + file).c_str(), nullptr, nullptr) < 0) return found;
  const av::Input input(opened);
  avformat_find_stream_info(opened, nullptr);
  const av::Packet packet = av::new_packet();
  while (av_read_frame(opened, packet.get()) >= 0) {
    const AVStream& stream = *opened->streams[packet->stream_index];
    found.push_back({stream.codecpar->codec_type, double(packet->pts) * av_q2d(stream.time_base),
                     (packet->flags & AV_PKT_FLAG_KEY) != 0,
                     std::string(reinterpret_cast<const char*>(packet->data), std::size_t(packet->size))});
    av_packet_unref(packet.get());
  }
  return found;
}

std::vector<Packet> of_type(const std::vector<Packet>& all, AVMediaType type) {
  std::vector<Packet> found;
  for (const Packet& packet : all) {
    if (packet.type == type) found.push_back(packet);
  }
  return found;
}

// Ten seconds with a tone, a key frame every two seconds.
std::string with_sound(const Folder& folder, const std::string& name, const std::string& codecs) {
  const std::string file = folder / name;
  const std::string command =
      "ffmpeg -nostdin -v error -f lavfi -i testsrc=size=96x64:rate=25:duration=10 -f lavfi -i "
      "sine=frequency=440:duration=10 " +
      codecs + " -g 50 -y '" + file + "' 2>/dev/null";
  // NOLINTNEXTLINE(cert-env33-c): the command is fixed
  return std::system(command.c_str()) == 0 ? file : "";
}

struct CopyCase {
  const char* name;
  const char* file;
  const char* codecs;
  const char* container;
};

class Copied : public testing::TestWithParam<CopyCase> {};

TEST_P(Copied, PacketsAreThoseOfTheFileFromTheKeyFrameBeforeToTheEndWithSound) {
  const Folder folder;
  const std::string file = with_sound(folder, GetParam().file, GetParam().codecs);
  if (file.empty()) GTEST_SKIP() << "no ffmpeg, or one without the encoders";
  const char* container = container_for_copy(file);
  ASSERT_NE(container, nullptr);
  EXPECT_STREQ(container, GetParam().container);
  PendingFile clip(folder / "clip");
  copy_clip(file, container, 5s, 7s, clip);

  const auto video = of_type(packets(clip.path()), AVMEDIA_TYPE_VIDEO);
  const auto whole = of_type(packets(file), AVMEDIA_TYPE_VIDEO);
  ASSERT_EQ(whole.size(), 250U);
  // From the key frame at 4 s (frame 100) to 7 s: 76 frames, and a few that other frames depend on.
  ASSERT_GE(video.size(), 76U);
  EXPECT_LE(video.size(), 80U);
  EXPECT_TRUE(video[0].key);
  for (std::size_t i = 0; i < video.size(); ++i) ASSERT_EQ(video[i].bytes, whole[100 + i].bytes) << i;

  const auto sound = of_type(packets(clip.path()), AVMEDIA_TYPE_AUDIO);
  ASSERT_GT(sound.size(), 10U);
  const double first = std::min_element(video.begin(), video.end(), [](const auto& a, const auto& b) {
                         return a.time < b.time;
                       })->time;
  EXPECT_NEAR(sound.front().time, first, 0.1) << "sound and picture stay together";
  EXPECT_NEAR(sound.back().time, first + 3, 0.15);
}

INSTANTIATE_TEST_SUITE_P(
    All, Copied,
    testing::Values(CopyCase{"H264", "a.mp4", "-c:v libx264 -preset veryfast -bf 2 -c:a aac", "mp4"},
                    CopyCase{"OfCameras", "a.mkv", "-c:v mpeg4 -c:a pcm_mulaw", "matroska"}),
    [](const auto& copied) { return std::string(copied.param.name); });

TEST(Copied, Mp4HasItsIndexAtTheFrontForBrowsers) {
  const Folder folder;
  clips::write(folder / "a.mkv", {64, 48}, clips::regular(20, 40ms));
  const char* container = container_for_copy(folder / "a.mkv");
  ASSERT_STREQ(container, "mp4");
  PendingFile clip(folder / "clip");
  copy_clip(folder / "a.mkv", container, 0s, 1s, clip);
  const std::string bytes = program::read(clip.path());
  EXPECT_LT(bytes.find("moov"), bytes.find("mdat"));
  EXPECT_EQ(clips::read(clip.path()).size(), 20U);
}

TEST(Copied, NothingFromOtherSources) {
  const Folder folder;
  EXPECT_EQ(container_for_copy(""), nullptr);
  EXPECT_EQ(container_for_copy("rtsp://camera/1"), nullptr);
  program::write(folder / "text", std::string(5000, 'a'));
  EXPECT_EQ(container_for_copy(folder / "text"), nullptr);
}

Event event_of(microseconds start, microseconds end) {
  Event event;
  event.id = "0001";
  event.start = start;
  event.end = end;
  event.from = std::max<microseconds>(0us, start - 200ms);
  event.to = end + 200ms;
  return event;
}

class Recorded : public testing::Test {
 protected:
  Recorded() {
    source_.size = {64, 48};
    source_.rate = 10;
  }

  void see(ClipRecorder& recorder, int frame) {
    recorder.frame(clips::picture({64, 48}, frame), frame * 100ms);
  }

  Folder folder_;
  SourceInfo source_;
};

// From 0.8 s, announced at 1.2 s, to 1.6 s: seven frames from 0.6 s on and two after the end.
TEST_F(Recorded, FromBeforeTheEventWasAnnouncedToAfterItsEnd) {
  ClipRecorder recorder(folder_ / "", source_, 2s);
  for (int i = 0; i < 12; ++i) see(recorder, i);
  recorder.begin(event_of(800ms, 1100ms));
  for (int i = 12; i < 25; ++i) {
    see(recorder, i);
    if (i <= 16) recorder.extend(event_of(800ms, i * 100ms));
    if (i == 17) {
      recorder.end(event_of(800ms, 1600ms));
      EXPECT_FALSE(std::filesystem::exists(folder_ / "00h00m00.800s-0001-motion.mp4"));
    }
  }
  const auto frames = clips::read(folder_ / "00h00m00.800s-0001-motion.mp4");
  EXPECT_EQ(clips::times_of(frames), clips::regular(13, 100ms));  // 0.6, 0.7, ... 1.8 s
  // The bright square of frame 6 begins at column 12.
  EXPECT_LT(frames[0].image.at<cv::Vec3b>(17, 9)[2], 150);
  EXPECT_GT(frames[0].image.at<cv::Vec3b>(17, 15)[2], 180);
}

// The event ends at 0.5 s, which is known at 0.8 s; its clip continues to 1.5 s.
TEST_F(Recorded, ToItsEndHoweverLongAfterTheEventsEnd) {
  ClipRecorder recorder(folder_ / "", source_, 2s);
  Event event = event_of(200ms, 500ms);
  event.to = 1500ms;
  for (int i = 0; i <= 8; ++i) see(recorder, i);
  recorder.begin(event);
  recorder.end(event);
  for (int i = 9; i < 15; ++i) see(recorder, i);
  EXPECT_FALSE(std::filesystem::exists(folder_ / "00h00m00.200s-0001-motion.mp4")) << "one frame is missing";
  see(recorder, 15);
  EXPECT_TRUE(std::filesystem::exists(folder_ / "00h00m00.200s-0001-motion.mp4"));
  for (int i = 16; i < 20; ++i) see(recorder, i);
  const auto frames = clips::read(folder_ / "00h00m00.200s-0001-motion.mp4");
  EXPECT_EQ(clips::times_of(frames), clips::regular(16, 100ms));  // 0.0, 0.1, ... 1.5 s
}

TEST_F(Recorded, ToTheLastFrameWhenThatComesBeforeTheEnd) {
  ClipRecorder recorder(folder_ / "", source_, 2s);
  for (int i = 0; i < 5; ++i) see(recorder, i);
  recorder.begin(event_of(200ms, 400ms));
  recorder.end(event_of(200ms, 400ms));
  recorder.finish();
  EXPECT_FALSE(std::filesystem::exists(folder_ / "00h00m00.200s-0001-motion.mp4"));
  recorder.commit();
  EXPECT_EQ(clips::read(folder_ / "00h00m00.200s-0001-motion.mp4").size(), 5U);
}

TEST_F(Recorded, NotFurtherBackThanFramesAreKept) {
  ClipRecorder recorder(folder_ / "", source_, 300ms);
  for (int i = 0; i < 10; ++i) see(recorder, i);
  recorder.begin(event_of(100ms, 900ms));
  recorder.finish();
  recorder.commit();
  EXPECT_EQ(clips::read(folder_ / "00h00m00.100s-0001-motion.mp4").size(), 4U) << "0.6 to 0.9 s";
}

TEST_F(Recorded, NothingOfARunThatFails) {
  {
    ClipRecorder recorder(folder_ / "", source_, 300ms);
    see(recorder, 0);
    recorder.begin(event_of(0ms, 0ms));
  }
  EXPECT_EQ(folder_.names(), Names{});
}

TEST_F(Recorded, NothingWhileALiveSourcesFolderIsGone) {
  source_.live = true;
  std::filesystem::create_directory(folder_ / "a");
  ClipRecorder recorder(folder_ / "a", source_, 2s);
  Event lost = event_of(0ms, 0ms);
  Event next = event_of(100ms, 200ms);
  next.id = "0002";
  std::filesystem::remove(folder_ / "a");
  testing::internal::CaptureStderr();
  see(recorder, 0);
  recorder.begin(lost);
  EXPECT_FALSE(recorder.records(lost));
  std::filesystem::create_directory(folder_ / "a");
  see(recorder, 1);
  recorder.begin(next);
  recorder.end(next);
  for (int i = 2; i < 8; ++i) see(recorder, i);
  const std::string log = testing::internal::GetCapturedStderr();
  EXPECT_NE(log.find("No such file or directory; the run continues and tries again\n"), std::string::npos)
      << log;
  EXPECT_NE(log.find(" can be written again; skipped in the meantime: 1\n"), std::string::npos) << log;
  EXPECT_EQ(clips::read(folder_ / "a/00h00m00.100s-0002-motion.mp4").size(), 5U) << "0 to 0.4 s";
}

TEST_F(Recorded, NothingOfAClipThatCannotBeCompleted) {
  source_.live = true;
  std::filesystem::create_directory(folder_ / "a");
  ClipRecorder recorder(folder_ / "a", source_, 2s);
  see(recorder, 0);
  recorder.begin(event_of(0ms, 0ms));
  std::filesystem::remove_all(folder_ / "a");
  testing::internal::CaptureStderr();
  recorder.end(event_of(0ms, 0ms));
  for (int i = 1; i < 5; ++i) see(recorder, i);
  recorder.finish();
  recorder.commit();
  EXPECT_NE(testing::internal::GetCapturedStderr().find("; the run continues"), std::string::npos);
}

// A file whose clock jumps is copied up to the jump and recorded after it.
TEST_F(Recorded, WhereTheFilesClockJumps) {
  const std::string file = folder_ / "a.mp4";
  clips::write(file, {64, 48}, clips::regular(40, 100ms));
  Clips listener(folder_ / "clips", file, source_, {.min_event = 0.2, .gap = 0.3, .pre = 0.2, .post = 0.2});
  for (int i = 0; i < 40; ++i) {
    Frame frame;
    frame.image = clips::picture({64, 48}, i);
    frame.time = i * 100ms;
    frame.stated = i < 20 ? frame.time : frame.time - 2s;
    Observation seen;
    seen.time = frame.time;
    listener.frame(frame, seen);
    Event first = event_of(500ms, 1s);
    Event second = event_of(2500ms, 3s);
    second.id = "0002";
    if (i == 8) listener.begun(first);
    if (i == 14) listener.ended(first);
    if (i == 30) listener.begun(second);
    if (i == 35) listener.ended(second);
  }
  const Folder& folder = folder_;
  const auto copied = packets(folder / "clips/00h00m00.500s-0001-motion.mp4");
  const auto whole = packets(file);
  ASSERT_GE(copied.size(), 12U);
  EXPECT_EQ(copied[0].bytes, whole[0].bytes) << "a copy";
  // 2.3 to 3.2 s.
  EXPECT_EQ(clips::read(folder / "clips/00h00m02.500s-0002-motion.mp4").size(), 10U);
}

// The only event of these frames begins with the second of them, 40 ms in.
TEST(Clips, NeverReplaceTheSource) {
  const Folder folder;
  const std::string file = folder / "00h00m00.040s-0001-motion.mp4";
  clips::write(file, {64, 48}, clips::regular(40, 40ms));
  const std::string before = program::read(file);
  const auto outcome = program::run_fake({file, "-q", "--clips", folder / ""});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_NE(outcome.errors.find("would overwrite the source"), std::string::npos) << outcome.errors;
  EXPECT_EQ(program::read(file), before);
  EXPECT_EQ(folder.names(), Names{"00h00m00.040s-0001-motion.mp4"});
}

TEST(Clips, OfTheBuiltInSceneAreRecorded) {
  const Folder folder;
  const auto outcome =
      program::run_fake({"-o", "/dev/null", "--clips", folder / "clips", "--pre", "1", "-q"});
  ASSERT_EQ(outcome.status, 0) << outcome.errors;
  // One event from the second frame to the last; the second before it has one frame.
  EXPECT_EQ(clips::read(folder / "clips/00h00m00.040s-0001-motion.mp4").size(), 500U);
}

// The real detector: a lamp is switched on at 12 s. Its light has a colour, and the surfaces no texture: the
// preset auto takes it for motion (docs/quality.md, Limits).
TEST(Clips, OfALightingChangeShowItFromBeforeToAfter) {
  const Folder folder;
  const auto outcome = program::run({"run", "-q", "-o", "/dev/null", "--preset", "street", "--clips",
                                     folder / "clips", "--events", folder / "events.json"});
  ASSERT_EQ(outcome.status, 0) << outcome.errors;
  Json::Value file;
  std::istringstream(program::read(folder / "events.json")) >> file;
  const auto light = std::find_if(file["events"].begin(), file["events"].end(),
                                  [](const Json::Value& event) { return event["kind"] == "light"; });
  ASSERT_NE(light, file["events"].end());
  ASSERT_NEAR((*light)["start"].asDouble(), 12, 0.2);
  const auto frames =
      clips::read(folder / ("clips/00h00m12.000s-" + (*light)["id"].asString() + "-light.mp4"));
  const double shown = (*light)["to"].asDouble() - (*light)["from"].asDouble();
  EXPECT_EQ(frames.size(), std::size_t(std::lround(shown * 25)) + 1);
  EXPECT_GT(cv::mean(frames.back().image)[1], cv::mean(frames.front().image)[1] + 2) << "brighter";
}

}  // namespace
