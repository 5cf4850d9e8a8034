// The built program with a camera that stalls, dies and comes back.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <optional>

#include "host/base/failure.h"
#include "host/source/source.h"
#include "tests/host/live_camera.h"

namespace {

using namespace std::chrono_literals;
using program::Folder;
using stream::Camera;
using stream::has_boxes;
using stream::is_note;
using stream::Watcher;

struct Kind {
  const char* name;
  const char* protocol;
  const char* coding;
};

bool nothing(const std::string&) { return false; }

class Stream : public testing::TestWithParam<Kind> {
 protected:
  void SetUp() override {
    if (std::system("ffmpeg -version >/dev/null 2>&1 && python3 -c '' 2>/dev/null") != 0)
      GTEST_SKIP() << "needs ffmpeg and python3";
    const std::string file = stream::still_scenes(folder_, GetParam().coding);
    ASSERT_FALSE(file.empty());
    camera_.emplace(folder_, file, GetParam().protocol);
  }

  // Waits for the program and sends it 8 seconds of the scene that starts with this picture, at once: FFmpeg
  // reads up to 7 s of a transport stream to detect its contents.
  void begin(int scene) {
    ASSERT_EQ(camera_->ask("play"), "done");
    for (int i = 0; i < 4; ++i) {
      ASSERT_EQ(camera_->ask(std::string("seek ").append(std::to_string(scene))), "done");
      ASSERT_EQ(camera_->ask("send 50"), "done");
    }
  }

  Folder folder_;
  std::optional<Camera> camera_;
};

constexpr int kDark = 0;
constexpr int kBright = 50;

const std::vector<std::string> kFake{"--plugin", LIGHTMOTION_FAKE_PLUGIN};

std::vector<std::string> operator+(std::vector<std::string> words, const std::vector<std::string>& more) {
  words.insert(words.end(), more.begin(), more.end());
  return words;
}

TEST_P(Stream, IsReconnectedAfterTheCameraDiedAndCameBack) {
  Camera& camera = *camera_;
  Watcher watcher(folder_, kFake + std::vector<std::string>{camera.address()});
  begin(kDark);
  ASSERT_NE(watcher.watch(camera, has_boxes), "") << watcher.errors();
  camera.ask("die");
  ASSERT_EQ(camera.ask("listen"), "done");
  begin(kDark);
  ASSERT_NE(watcher.watch(camera, is_note), "") << watcher.errors();
  ASSERT_NE(watcher.watch(camera, has_boxes), "") << watcher.errors();
  EXPECT_EQ(watcher.stop(), 130);
  EXPECT_NE(watcher.errors().find("connection lost: "), std::string::npos) << watcher.errors();
  EXPECT_NE(watcher.errors().find("reconnected 1 time, "), std::string::npos) << watcher.errors();
}

TEST_P(Stream, ThatStallsIsReconnectedAfterTheTimeout) {
  Camera& camera = *camera_;
  Watcher watcher(folder_, kFake + std::vector<std::string>{camera.address(), "--timeout", "1"});
  begin(kDark);
  ASSERT_NE(watcher.watch(camera, has_boxes), "") << watcher.errors();
  begin(kDark);  // nothing is sent until the program reconnects
  const std::string note = watcher.watch(camera, is_note);
  EXPECT_NE(note.find(" s without pictures: reading stopped: no data for 1.000 s\""), std::string::npos)
      << note;
  EXPECT_EQ(watcher.stop(), 130);
}

TEST_P(Stream, ThatStaysAwayEndsTheProgram) {
  Camera& camera = *camera_;
  Watcher watcher(folder_, kFake + std::vector<std::string>{camera.address(), "--reconnect", "1"});
  begin(kDark);
  ASSERT_NE(watcher.watch(camera, has_boxes), "") << watcher.errors();
  camera.ask("die");
  EXPECT_EQ(watcher.wait(), 1);
  EXPECT_NE(watcher.errors().find("connection lost, gave up: "), std::string::npos) << watcher.errors();
}

TEST_P(Stream, ThatNeverAnswersIsNamed) {
  Camera& camera = *camera_;
  lm::host::source::Reading reading;
  reading.timeout = 300ms;
  try {
    lm::host::source::open_source(camera.address(), reading);
    ADD_FAILURE() << "opened";
  } catch (const lm::host::base::Failure& failure) {
    EXPECT_EQ(failure.what(), camera.address() + ": no data for 0.300 s");
  }
}

double time_of(const std::string& line) {
  const std::string key = "\"time\":";
  return std::atof(line.substr(line.find(key) + key.size()).c_str());
}

class StreamWithoutTimestamps : public Stream {};

// Such streams do not state a frame rate; FFmpeg assumes 25 per second.
TEST_P(StreamWithoutTimestamps, UsesArrivalTimes) {
  Watcher watcher(folder_, kFake + std::vector<std::string>{camera_->address()});
  begin(kDark);
  ASSERT_NE(watcher.watch(*camera_, has_boxes), "") << watcher.errors();
  watcher.idle(500ms);  // until the program has caught up
  const std::string before = watcher.lines().back();
  watcher.idle(500ms);
  const std::string after = watcher.watch(*camera_, has_boxes);
  EXPECT_EQ(watcher.stop(), 130);
  EXPECT_GE(time_of(after) - time_of(before), 0.5) << before << after;
}

class FirstPicture : public Stream {};

// Pictures decoded without their key frame are grey or smeared. The second scene starts with picture 50, and
// the first key frame after picture 60 is picture 75.
TEST_P(FirstPicture, IsAKeyPicture) {
  Camera& camera = *camera_;
  program::write(folder_ / "c.json", R"({"comment": "pixel"})");
  Watcher watcher(folder_, kFake + std::vector<std::string>{camera.address(), "-c", folder_ / "c.json"});
  ASSERT_EQ(camera.ask("play"), "done");
  ASSERT_EQ(camera.ask("seek 60"), "done");
  ASSERT_EQ(camera.ask("send 39"), "done");  // up to the end of the scene
  ASSERT_EQ(camera.ask("seek 76"), "done");
  ASSERT_NE(watcher.watch(camera, has_boxes), "") << watcher.errors();
  EXPECT_EQ(watcher.stop(), 130);
  for (const std::string& line : watcher.lines()) {
    // 0xa0 in the bright scene; grey would be 0x80.
    const double pixel = 256 * std::atof(line.substr(line.find("\"height\":") + 9).c_str());
    EXPECT_NEAR(pixel, 0xa0, 6) << line;
  }
}

// Pictures 50 and 75 are key frames.
TEST_P(FirstPicture, ThatNeverComesIsReportedWithoutThePassword) {
  Camera& camera = *camera_;
  std::string address = camera.address();
  address.insert(address.find("//") + 2, "me:secret@");
  Watcher watcher(folder_, kFake + std::vector<std::string>{address, "--timeout", "1"});
  ASSERT_EQ(camera.ask("play"), "done");
  for (const char* command : {"seek 51", "send 24", "seek 76", "send 24", "seek 51", "send 24"}) {
    ASSERT_EQ(camera.ask(command), "done");
  }
  EXPECT_EQ(watcher.wait(), 1);
  address.replace(address.find("secret"), 6, "***");
  EXPECT_EQ(watcher.errors(),
            "lightmotion: " + address + ": no frame could be decoded: no data for 1.000 s\n");
}

std::string plugin_document(const Folder& folder) {
  program::write(folder / "c.json", R"({"sensitivity": "4", "minBoxW": "0.02", "minBoxH": "0.05"})");
  return folder / "c.json";
}

// The real detector, which reports the other scene as motion unless it is restarted.
class SceneAfterALoss : public Stream {
 protected:
  // Lines with boxes.
  std::ptrdiff_t boxes_after(bool loss) {
    Watcher watcher(folder_, {camera_->address(), "-c", plugin_document(folder_)});
    begin(kDark);
    camera_->ask("seek 25");
    watcher.watch(*camera_, nothing, 20);  // until the program has caught up
    if (loss) {
      camera_->ask("die");
      camera_->ask("listen");
      begin(kBright);
    }
    camera_->ask("seek 50");
    if (loss) {
      EXPECT_NE(watcher.watch(*camera_, is_note), "") << watcher.errors();
    }
    watcher.watch(*camera_, nothing, 40);
    watcher.stop();
    return std::count_if(watcher.lines().begin(), watcher.lines().end(), has_boxes);
  }
};

TEST_P(SceneAfterALoss, IsNoMotion) { EXPECT_EQ(boxes_after(true), 0); }
TEST_P(SceneAfterALoss, IsMotionWithoutTheLoss) { EXPECT_GT(boxes_after(false), 0); }

constexpr Kind kKinds[] = {{"Rtsp", "rtsp", stream::kH264},
                           {"TransportStreamByHttp", "http", stream::kH264},
                           {"JpegByHttp", "http", "-c:v mjpeg -q:v 2 -f mjpeg"}};

std::string name_of(const testing::TestParamInfo<Kind>& kind) { return kind.param.name; }

INSTANTIATE_TEST_SUITE_P(All, Stream, testing::ValuesIn(kKinds), name_of);
INSTANTIATE_TEST_SUITE_P(All, StreamWithoutTimestamps, testing::Values(kKinds[2]), name_of);
INSTANTIATE_TEST_SUITE_P(All, FirstPicture, testing::Values(kKinds[0]), name_of);
INSTANTIATE_TEST_SUITE_P(All, SceneAfterALoss, testing::ValuesIn(kKinds), name_of);

}  // namespace
