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
    std::istringstream(program::read(folder_ / "events.json")) >> file_;
    ASSERT_EQ(file_["events"].size(), 2U) << file_;
  }

  // The fake plug-in reports boxes all the time.
  void watch_over_a_loss(const std::string& pictures) {
    Camera camera(folder_, pictures);
    Watcher watcher(
        folder_, {camera.address(), "--plugin", LIGHTMOTION_FAKE_PLUGIN, "--min-event", "0.2", "--pre", "0.2",
                  "--post", "0.2", "--events", folder_ / "events.json", "--report", folder_ / "report.html",
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
  std::string note_;
  Json::Value file_;
};

TEST_F(LostCamera, LeavesWholeResultsWithTheReason) {
  Json::Value note;
  std::istringstream(note_) >> note;
  const Json::Value& before = file_["events"][0];
  const Json::Value& after = file_["events"][1];
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

// The estimate of the first picture's arrival only ever moves back.
TEST_F(LostCamera, LeavesTheWallClockOfEveryEvent) {
  const double zero = wall_clock(file_["source"]["wall_start"]);
  ASSERT_GT(zero, 0);
  EXPECT_TRUE(file_["source"]["live"].asBool());
  for (const Json::Value& event : file_["events"]) {
    for (const auto& [wall, time] : {std::pair{"wall_start", "start"}, {"wall_end", "end"}}) {
      const double late = wall_clock(event[wall]) - (zero + event[time].asDouble());
      EXPECT_GE(late, -0.002) << wall << ", rounded to the thousandth";
      EXPECT_LE(late, 10) << wall;
    }
  }
}

}  // namespace
