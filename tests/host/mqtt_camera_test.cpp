// What the broker retains about a camera that is lost, freezes and comes back, and when its program ends.
#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <optional>

#include "tests/host/broker.h"
#include "tests/host/clips.h"
#include "tests/host/live_camera.h"

namespace {

using namespace std::chrono_literals;
using broker::Broker;
using broker::Subscriber;
using stream::Camera;
using stream::Watcher;

constexpr const char* kState = "home/hall/camera";
constexpr const char* kMotion = "home/hall/motion";
constexpr const char* kAvailability = "home/hall/availability";

class MqttCamera : public testing::Test {
 protected:
  void SetUp() override {
    if (!Broker::installed()) GTEST_SKIP() << "mosquitto is not installed";
    if (std::system("ffmpeg -version >/dev/null 2>&1 && python3 -c '' 2>/dev/null") != 0)
      GTEST_SKIP() << "needs ffmpeg and python3";
    const std::string pictures = stream::still_scenes(folder_, "-c:v mjpeg -q:v 2 -f mjpeg");
    ASSERT_FALSE(pictures.empty());
    broker_.start();
    reader_.emplace(broker_);
    camera_.emplace(folder_, pictures, "http");
  }

  // The fake plug-in reports boxes all the time.
  std::vector<std::string> arguments(const std::vector<std::string>& more = {}) const {
    std::vector<std::string> all{camera_->address(),
                                 "--plugin",
                                 LIGHTMOTION_FAKE_PLUGIN,
                                 "--min-event",
                                 "0",
                                 "--mqtt",
                                 broker_.address() + "/home",
                                 "--mqtt-camera",
                                 "hall"};
    all.insert(all.end(), more.begin(), more.end());
    return all;
  }

  void begin_motion(Watcher& watcher) {
    ASSERT_EQ(camera_->ask("play"), "done");
    ASSERT_EQ(camera_->ask("send 20"), "done");
    ASSERT_NE(watcher.watch(*camera_,
                            [left = 20](const std::string& line) mutable {
                              return stream::has_boxes(line) && --left == 0;
                            }),
              "")
        << watcher.errors();
    ASSERT_TRUE(reader_->wait_for(kMotion, "ON"));
    ASSERT_TRUE(reader_->wait_for(kState, R"("camera":"connected")"));
  }

  // Waits for a new message on the topic with that text.
  void expect(const std::string& topic, const std::string& text) {
    EXPECT_TRUE(reader_->wait([&](const Subscriber::Messages& messages) {
      const auto last = std::find_if(messages.rbegin(), messages.rend(),
                                     [&](const broker::Message& message) { return message.topic == topic; });
      return last != messages.rend() && last->payload.find(text) != std::string::npos;
    })) << topic
        << " is not " << text;
  }

  program::Folder folder_;
  Broker broker_;
  std::optional<Subscriber> reader_;
  std::optional<Camera> camera_;
};

TEST_F(MqttCamera, ThatIsLostHasNoMotionAndIsNotAvailableUntilItReturns) {
  Watcher watcher(folder_, arguments());
  begin_motion(watcher);
  camera_->ask("die");
  expect(kMotion, "OFF");
  expect(kState, R"("camera":"reconnecting")");
  expect(kAvailability, "offline");
  EXPECT_TRUE(reader_->wait_for("home/hall/event/end", "The connection to the camera was lost: "));
  ASSERT_EQ(camera_->ask("listen"), "done");
  ASSERT_EQ(camera_->ask("play"), "done");
  ASSERT_NE(watcher.watch(*camera_, stream::is_note), "") << watcher.errors();
  expect(kState, R"("camera":"connected")");
  expect(kAvailability, "online");
  EXPECT_EQ(watcher.stop(), 130);
  expect(kMotion, "OFF");
  expect(kState, R"("camera":"unknown")");
  expect(kAvailability, "offline");
}

// Picture 0 over and over, then picture 50.
TEST_F(MqttCamera, ThatFreezesHasNoMotionAndIsNotAvailable) {
  Watcher watcher(folder_, arguments({"--frozen", "0.3"}));
  const auto noted = [](const std::string& text) {
    return [text](const std::string& line) { return line.find(text) != std::string::npos; };
  };
  ASSERT_EQ(camera_->ask("play"), "done");
  ASSERT_EQ(camera_->ask("send 20"), "done");
  std::string note;
  for (int i = 0; i < 1000 && note.empty(); ++i) {
    camera_->ask("seek 0");
    note = watcher.watch(*camera_, noted(R"("note":"the picture is frozen: no change for 0.)"), 1);
  }
  ASSERT_NE(note, "") << watcher.errors();
  expect(kState, R"("camera":"frozen")");
  expect(kMotion, "OFF");
  expect(kAvailability, "offline");
  camera_->ask("seek 50");
  ASSERT_NE(watcher.watch(*camera_, noted(R"("note":"the picture was frozen for )"), 10), "");
  expect(kState, R"("camera":"connected")");
  expect(kAvailability, "online");
  EXPECT_EQ(watcher.stop(), 130);
}

TEST_F(MqttCamera, IsInNoStateWhenTheProgramIsKilled) {
  Watcher watcher(folder_, arguments());
  begin_motion(watcher);
  watcher.signal(SIGKILL);
  expect(kMotion, "OFF");
  expect(kState, R"({"camera":"unknown","reason":"The program is not running."})");
  expect(kAvailability, "offline");
}

TEST_F(MqttCamera, HasNoMotionWhenTheDetectorFails) {
  program::write(folder_ / "c.json", R"({"comment": "frame throws"})");
  clips::write(folder_ / "a.mp4", {64, 48}, clips::regular(20, 40ms));
  const auto outcome = program::run_fake({folder_ / "a.mp4", "-c", folder_ / "c.json", "--min-event", "0.04",
                                          "--mqtt", broker_.address() + "/home", "--mqtt-camera", "hall"});
  EXPECT_EQ(outcome.status, 1);
  expect("home/hall/event/end", "\"ended\":\"The program failed: ");
  reader_.emplace(broker_);  // gets what is retained, the last of each state
  expect(kMotion, "OFF");
  expect(kAvailability, "offline");
}

}  // namespace
