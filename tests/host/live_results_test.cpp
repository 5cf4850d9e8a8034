// The outputs of a run over a camera that is lost and reconnected.
#include <gtest/gtest.h>
#include <json/json.h>

#include <algorithm>
#include <cstdlib>
#include <ctime>
#include <sstream>

#include "tests/host/clips.h"
#include "tests/host/live_camera.h"

namespace {

namespace fs = std::filesystem;
using program::Folder;
using stream::Camera;
using stream::Watcher;
using Names = std::vector<std::string>;

Names names_in(const std::string& folder) {
  Names names;
  for (const auto& entry : fs::directory_iterator(folder)) names.push_back(entry.path().filename());
  std::sort(names.begin(), names.end());
  return names;
}

// "2026-03-01T07:05:12.480Z" in seconds since 1970.
double wall_clock(const Json::Value& text) {
  std::tm parts{};
  const char* rest = strptime(text.asCString(), "%Y-%m-%dT%H:%M:%S", &parts);
  return rest == nullptr ? 0 : double(timegm(&parts)) + std::atof(rest);
}

class LostCamera : public testing::Test {
 protected:
  void SetUp() override {
    if (std::system("ffmpeg -version >/dev/null 2>&1 && python3 -c '' 2>/dev/null") != 0)
      GTEST_SKIP() << "needs ffmpeg and python3";
    const std::string pictures = stream::still_scenes(folder_);
    ASSERT_FALSE(pictures.empty());
    watch_over_a_loss(pictures);
    for (const std::string& line : program::lines(program::read(folder_ / "events.jsonl")))
      std::istringstream(line) >> events_[events_.size()];
    ASSERT_EQ(events_.size(), 2U) << events_;
  }

  // The fake plug-in reports boxes all the time.
  void watch_over_a_loss(const std::string& pictures) {
    Camera camera(folder_, pictures);
    Watcher watcher(
        folder_, {camera.address(), "--plugin", LIGHTMOTION_FAKE_PLUGIN, "--min-event", "0.2", "--pre", "0.2",
                  "--post", "0.2", "--events", folder_ / "events.jsonl", "--report", folder_ / "report.html",
                  "--clips", folder_ / "clips", "--snapshots", folder_ / "shots"});
    const auto twenty_boxes = [left = 20](const std::string& line) mutable {
      return stream::has_boxes(line) && --left == 0;
    };
    ASSERT_EQ(camera.ask("play"), "done");
    ASSERT_NE(watcher.watch(camera, twenty_boxes), "") << watcher.errors();
    camera.ask("die");
    ASSERT_EQ(camera.ask("listen"), "done");
    ASSERT_EQ(camera.ask("play"), "done");
    note_ = watcher.watch(camera, stream::is_note);
    ASSERT_NE(note_, "") << watcher.errors();
    ASSERT_NE(watcher.watch(camera, twenty_boxes), "") << watcher.errors();
    ASSERT_EQ(watcher.stop(), 130) << watcher.errors();
  }

  Folder folder_;
  double begin_ = double(std::time(nullptr));
  std::string note_;
  Json::Value events_{Json::arrayValue};
};

TEST_F(LostCamera, LeavesWholeResultsWithTheReason) {
  Json::Value note;
  std::istringstream(note_) >> note;
  const Json::Value& before = events_[0];
  const Json::Value& after = events_[1];
  EXPECT_LT(before["end"].asDouble(), note["time"].asDouble());
  EXPECT_GT(after["start"].asDouble(), note["time"].asDouble()) << "nothing is known of its first picture";
  const std::string lost_by = note["note"].asString().substr(note["note"].asString().find(": ") + 2);
  const std::string reason = "The connection to the camera was lost: " + lost_by + ".";
  EXPECT_EQ(before["ended"], reason);
  EXPECT_EQ(after["ended"], "The program was stopped.");
  EXPECT_NE(program::read(folder_ / "report.html").find(reason), std::string::npos);

  // One of each per event, and nothing else, not even hidden files.
  const Names videos = names_in(folder_ / "clips");
  const Names shots = names_in(folder_ / "shots");
  ASSERT_EQ(videos.size(), 2U);
  ASSERT_EQ(shots.size(), 2U);
  for (std::size_t i = 0; i < 2; ++i) {
    EXPECT_EQ(fs::path(videos[i]).stem(), fs::path(shots[i]).stem());
    EXPECT_GE(clips::read(folder_ / ("clips/" + videos[i])).size(), 5U);
  }
  for (const std::string& name : folder_.names()) EXPECT_FALSE(name.ends_with(".part")) << name;
}

TEST_F(LostCamera, LeavesTheWallClockOfEveryEvent) {
  EXPECT_GE(wall_clock(events_[0]["wall_start"]), begin_ - 0.002) << "rounded to the thousandth";
  EXPECT_GT(wall_clock(events_[1]["wall_start"]), wall_clock(events_[0]["wall_start"]));
  for (const Json::Value& event : events_) {
    const double length = event["end"].asDouble() - event["start"].asDouble();
    EXPECT_NEAR(wall_clock(event["wall_end"]) - wall_clock(event["wall_start"]), length, 0.003);
    EXPECT_LE(wall_clock(event["wall_start"]), double(std::time(nullptr)) + 1);
  }
}

// Until the result file has twenty lines more than `before`; false if it never has.
bool lines_come(Camera& camera, Watcher& watcher, const std::string& file, std::size_t before) {
  for (int pictures = 0; pictures < 1500; ++pictures) {
    if (camera.ask("send 1") != "done") return false;
    watcher.idle(std::chrono::milliseconds(20));
    if (program::lines(program::read(file)).size() >= before + 20) return true;
  }
  return false;
}

TEST(KilledWatch, LeavesWholeLinesThatTheNextContinues) {
  if (std::system("ffmpeg -version >/dev/null 2>&1 && python3 -c '' 2>/dev/null") != 0)
    GTEST_SKIP() << "needs ffmpeg and python3";
  const Folder folder;
  const std::string pictures = stream::still_scenes(folder);
  ASSERT_FALSE(pictures.empty());
  Camera camera(folder, pictures);
  const std::string results = folder / "a.jsonl";
  const std::vector<std::string> arguments{camera.address(),
                                           "--plugin",
                                           LIGHTMOTION_FAKE_PLUGIN,
                                           "-o",
                                           results,
                                           "--min-event",
                                           "0.2",
                                           "--events",
                                           folder / "events.jsonl"};
  {
    Watcher watcher(folder, arguments);
    ASSERT_EQ(camera.ask("play"), "done");
    ASSERT_TRUE(lines_come(camera, watcher, results, 0)) << watcher.errors();
  }  // SIGKILL
  const std::string before = program::read(results);
  EXPECT_TRUE(before.ends_with("}\n")) << before;
  camera.ask("die");
  ASSERT_EQ(camera.ask("listen"), "done");
  program::write(results, before + "{\"frame\":1");
  Watcher watcher(folder, arguments);
  ASSERT_EQ(camera.ask("play"), "done");
  ASSERT_TRUE(lines_come(camera, watcher, results, program::lines(before).size())) << watcher.errors();
  EXPECT_EQ(watcher.stop(), 130) << watcher.errors();
  const std::string after = program::read(results);
  EXPECT_TRUE(after.starts_with(before + "{\"frame\":")) << after;
  for (const std::string& line : program::lines(after)) {
    Json::Value value;
    std::istringstream(line) >> value;
    EXPECT_TRUE(value["boxes"].isArray()) << line;
  }
  EXPECT_EQ(program::lines(program::read(folder / "events.jsonl")).size(), 1U) << "the one that ended";
}

TEST(Recording, HasNothingToRotate) {
  const Folder folder;
  const auto outcome = program::run_fake({"-o", folder / "a.jsonl", "--rotate", "day"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.errors,
            "lightmotion: --rotate, --keep and --keep-size are for cameras and streams; built-in scene is a "
            "recording, whose results are complete or not there\n");
  EXPECT_FALSE(fs::exists(folder / "a.jsonl"));
}

}  // namespace
