// The built program and a camera that stalls, dies and comes back.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>

#include "host/failure.h"
#include "host/source.h"
#include "tests/host/live_camera.h"

namespace {

using namespace std::chrono_literals;
using program::Folder;
using stream::Camera;
using stream::Watcher;

// Two still scenes of two seconds each, a dark one and a bright one, with a key picture every second.
std::string still_scenes(const Folder& folder) {
  const std::string file = folder / "camera.h264";
  const std::string command =
      "ffmpeg -v error -f lavfi -i \"color=0x404040:s=160x120:r=25:d=2,drawbox=20:20:60:60:0x808080:fill\" "
      "-f lavfi -i \"color=0xa0a0a0:s=160x120:r=25:d=2,drawbox=80:40:60:60:0x202020:fill\" "
      "-filter_complex concat -c:v libx264 -g 25 -keyint_min 25 -sc_threshold 0 -bf 0 -x264-params "
      "aud=1:repeat-headers=1 " +
      file;
  return std::system(command.c_str()) == 0 ? file : "";
}

bool is_note(const std::string& line) { return line.find("\"note\":\"restarted: ") != std::string::npos; }
bool has_boxes(const std::string& line) { return line.find("\"object\":") != std::string::npos; }

bool nothing(const std::string&) { return false; }

class Stream : public testing::Test {
 protected:
  void SetUp() override {
    if (std::system("ffmpeg -version >/dev/null 2>&1 && python3 -c '' 2>/dev/null") != 0)
      GTEST_SKIP() << "needs ffmpeg and python3";
    file_ = still_scenes(folder_);
    ASSERT_FALSE(file_.empty());
  }

  Folder folder_;
  std::string file_;
};

const std::vector<std::string> kFake{"--plugin", LIGHTMOTION_FAKE_PLUGIN};

std::vector<std::string> operator+(std::vector<std::string> words, const std::vector<std::string>& more) {
  words.insert(words.end(), more.begin(), more.end());
  return words;
}

TEST_F(Stream, IsWatchedAgainAfterTheCameraDiedAndCameBack) {
  Camera camera(folder_, file_);
  Watcher watcher(folder_, kFake + std::vector<std::string>{camera.address()});
  ASSERT_EQ(camera.ask("play"), "done");
  ASSERT_EQ(camera.ask("send 60"), "done");
  ASSERT_NE(watcher.watch(camera, has_boxes), "") << watcher.errors();
  camera.ask("die");
  ASSERT_EQ(camera.ask("listen"), "done");
  ASSERT_EQ(camera.ask("play"), "done");
  ASSERT_EQ(camera.ask("send 60"), "done");
  ASSERT_NE(watcher.watch(camera, is_note), "") << watcher.errors();
  ASSERT_NE(watcher.watch(camera, has_boxes), "") << watcher.errors();
  EXPECT_EQ(watcher.stop(), 130);
  EXPECT_NE(watcher.errors().find("connection lost: "), std::string::npos) << watcher.errors();
  EXPECT_NE(watcher.errors().find("connected again 1 time, "), std::string::npos) << watcher.errors();
}

TEST_F(Stream, ThatStallsIsGivenUpAfterTheTimeoutAndConnectedAnew) {
  Camera camera(folder_, file_);
  Watcher watcher(folder_, kFake + std::vector<std::string>{camera.address(), "--timeout", "1"});
  ASSERT_EQ(camera.ask("play"), "done");
  ASSERT_EQ(camera.ask("send 60"), "done");
  ASSERT_NE(watcher.watch(camera, has_boxes), "") << watcher.errors();
  ASSERT_EQ(camera.ask("play"), "done");  // nothing is sent until the program comes back
  ASSERT_EQ(camera.ask("send 60"), "done");
  const std::string note = watcher.watch(camera, is_note);
  EXPECT_NE(note.find("restarted: reading stopped: no data for 1.000 s; "), std::string::npos) << note;
  EXPECT_EQ(watcher.stop(), 130);
}

TEST_F(Stream, ThatStaysAwayEndsTheProgram) {
  Camera camera(folder_, file_);
  Watcher watcher(folder_, kFake + std::vector<std::string>{camera.address(), "--reconnect", "1"});
  ASSERT_EQ(camera.ask("play"), "done");
  ASSERT_EQ(camera.ask("send 60"), "done");
  ASSERT_NE(watcher.watch(camera, has_boxes), "") << watcher.errors();
  camera.ask("die");
  EXPECT_EQ(watcher.wait(), 1);
  EXPECT_NE(watcher.errors().find("connection lost for good: "), std::string::npos) << watcher.errors();
}

TEST_F(Stream, ThatNeverAnswersIsNamed) {
  Camera camera(folder_, file_);
  lm::host::Reading reading;
  reading.timeout = 300ms;
  try {
    lm::host::open_source(camera.address(), reading);
    ADD_FAILURE() << "opened";
  } catch (const lm::host::Failure& failure) {
    EXPECT_EQ(failure.what(), camera.address() + ": no data for 0.300 s");
  }
}

// Pictures without the key picture that they are built on come out grey or smeared. The second scene starts
// with picture 50, and the first whole one after picture 60 is picture 75.
TEST_F(Stream, IsJoinedWithItsFirstKeyPicture) {
  Camera camera(folder_, file_);
  Watcher watcher(folder_, kFake + std::vector<std::string>{camera.address()});
  ASSERT_EQ(camera.ask("play"), "done");
  ASSERT_EQ(camera.ask("seek 60"), "done");
  ASSERT_EQ(camera.ask("send 39"), "done");  // up to the end of the scene
  ASSERT_EQ(camera.ask("seek 76"), "done");
  ASSERT_NE(watcher.watch(camera, has_boxes), "") << watcher.errors();
  EXPECT_EQ(watcher.stop(), 130);
  for (const std::string& line : watcher.lines()) {
    // 0xa0 in the bright scene; grey would be 0x80.
    const int pixel = std::atoi(line.substr(line.find("\"pixel\":") + 8).c_str());
    EXPECT_NEAR(pixel, 0xa0, 6) << line;
  }
}

std::string plugin_document(const Folder& folder) {
  program::write(folder / "c.json", R"({"sensitivity": "4", "minBoxW": "0.02", "minBoxH": "0.05"})");
  return folder / "c.json";
}

// The real detector, which sees the other scene as motion unless it is told to start anew.
TEST_F(Stream, ThatShowsAnotherSceneAfterItsLossHasNoMotion) {
  for (const bool loss : {false, true}) {
    Camera camera(folder_, file_);
    Watcher watcher(folder_, {camera.address(), "-c", plugin_document(folder_)});
    ASSERT_EQ(camera.ask("play"), "done");
    ASSERT_EQ(camera.ask("send 50"), "done");
    camera.ask("seek 25");
    // The dark scene until the program has caught up, then the bright one.
    watcher.watch(camera, nothing, 20);
    if (loss) {
      camera.ask("die");
      camera.ask("listen");
      camera.ask("seek 50");
      ASSERT_EQ(camera.ask("play"), "done");
      ASSERT_EQ(camera.ask("send 50"), "done");
      camera.ask("seek 50");
      ASSERT_NE(watcher.watch(camera, is_note), "") << watcher.errors();
    } else {
      camera.ask("seek 50");
    }
    watcher.watch(camera, nothing, 40);
    watcher.stop();
    const auto boxes = std::count_if(watcher.lines().begin(), watcher.lines().end(), has_boxes);
    EXPECT_EQ(boxes == 0, loss) << boxes << " lines with boxes";
  }
}

}  // namespace
