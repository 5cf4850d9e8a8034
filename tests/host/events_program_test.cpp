// Events written by the built program.
#include <gtest/gtest.h>
#include <json/json.h>

#include <cstdlib>
#include <sstream>

#include "tests/host/clips.h"
#include "tests/host/program.h"

namespace {

using namespace std::chrono_literals;
using program::Folder;
using program::Outcome;
using program::run_fake;

Json::Value parsed(const std::string& text) {
  Json::Value value;
  std::istringstream(text) >> value;
  return value;
}

Json::Value events_of(const std::string& file) { return parsed(program::read(file))["events"]; }

// The fake plug-in reports a box in each of these except the 1st, 11th, 21st and so on.
std::string clip(const Folder& folder, int frames) {
  clips::write(folder / "a.mp4", {64, 48}, clips::regular(frames, 40ms));
  return folder / "a.mp4";
}

// With the real plug-in.
Outcome run_scene(const std::vector<std::string>& arguments) {
  std::vector<std::string> all{"run", "--plugin", LIGHTMOTION_PLUGIN, "-q", "-o", "/dev/null"};
  all.insert(all.end(), arguments.begin(), arguments.end());
  return program::run(all);
}

TEST(EventsProgram, AFileHasItsEventsInOrder) {
  const Folder folder;
  const Outcome outcome = run_fake({clip(folder, 21), "-o", "/dev/null", "--events", folder / "e.json"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_NE(outcome.errors.find("motion in 18 frames, 1 event"), std::string::npos) << outcome.errors;
  const Json::Value events = events_of(folder / "e.json");
  ASSERT_EQ(events.size(), 1U);
  const Json::Value& event = events[0];
  EXPECT_EQ(event["id"], "0001");
  EXPECT_EQ(event["kind"], "motion");
  EXPECT_DOUBLE_EQ(event["start"].asDouble(), 0.04);
  EXPECT_DOUBLE_EQ(event["end"].asDouble(), 0.76) << "frame 19; there is no box in frame 20";
  EXPECT_DOUBLE_EQ(event["from"].asDouble(), 0);
  EXPECT_DOUBLE_EQ(event["to"].asDouble(), 0.8) << "the video ends there";
  EXPECT_EQ(event["frames_with_boxes"].asInt(), 18);
  EXPECT_EQ(event["ended"], "The video ended.");
}

TEST(EventsProgram, RulesComeFromTheCommandLine) {
  const Folder folder;
  const std::string video = clip(folder, 31);
  // Frames 0, 10, 20 and 30 have no boxes: the frames around one are 80 ms apart. Each part lasts 0.32 s.
  ASSERT_EQ(run_fake({video, "--events", folder / "e.json", "--gap", "0.05", "--min-event", "0.3"}).status,
            0);
  EXPECT_EQ(events_of(folder / "e.json").size(), 3U);
  ASSERT_EQ(run_fake({video, "--events", folder / "e.json", "--gap", "0.05", "--min-event", "0.4"}).status,
            0);
  EXPECT_EQ(events_of(folder / "e.json").size(), 0U);
}

TEST(EventsProgram, TablesHaveARowForEachEvent) {
  const Folder folder;
  ASSERT_EQ(run_fake({clip(folder, 21), "-o", "/dev/null", "--events", folder / "e.csv"}).status, 0);
  const auto lines = program::lines(program::read(folder / "e.csv"));
  ASSERT_EQ(lines.size(), 2U);
  EXPECT_EQ(
      lines[0],
      "id,kind,start,end,peak,from,to,first_frame,last_frame,peak_frame,frames_with_boxes,most_boxes,peak_"
      "share,"
      "envelope_x,envelope_y,envelope_width,envelope_height,largest_x,largest_y,largest_width,largest_height,"
      "objects,dwell,crossings,regions,light_before,light_after,light_share,wall_start,wall_end,started,"
      "ended\r");
  EXPECT_TRUE(
      lines[1].starts_with("0001,motion,0.040,0.760,0.040,0.000,0.800,1,19,1,18,1,0.030000,"
                           "0.500000,0.250000,0.100000,0.300000,"))
      << lines[1];
}

TEST(EventsProgram, RunningAFileTwiceGivesTheSameEvents) {
  const Folder folder;
  const std::string video = clip(folder, 31);
  ASSERT_EQ(run_fake({video, "--events", folder / "1.json"}).status, 0);
  ASSERT_EQ(run_fake({video, "--events", folder / "2.json"}).status, 0);
  EXPECT_EQ(program::read(folder / "1.json"), program::read(folder / "2.json"));
}

TEST(EventsProgram, NoFileTakesItsNameWhenTheRunFails) {
  const Folder folder;
  program::write(folder / "c.json", R"({"comment": "frame throws"})");
  const Outcome outcome = run_fake(
      {clip(folder, 21), "-c", folder / "c.json", "--events", folder / "e.json", "-o", folder / "o"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(folder.names(), (std::vector<std::string>{"a.mp4", "c.json"}));
}

TEST(EventsProgram, WrongUseIsRefused) {
  for (const std::vector<std::string>& wrong : {std::vector<std::string>{"--events", "e.txt"},
                                                {"--gap", "-1"},
                                                {"--explain", "5-4"},
                                                {"--min-event", "x"},
                                                {"--events", "same.json", "-o", "same.json"}})
    EXPECT_EQ(run_fake(wrong).status, 2) << wrong[1];
}

TEST(EventsProgram, ExplainsASpanOfTime) {
  const Folder folder;
  program::write(folder / "c.json", R"({"minBoxW": "0.03", "ror": [{"name": "tree", "points":
      [{"x": "0", "y": "0"}, {"x": "0.5", "y": "0"}, {"x": "0.5", "y": "0.5"}]}]})");
  const Outcome outcome = run_fake({clip(folder, 21), "-q", "-o", "/dev/null", "-c", folder / "c.json",
                                    "--explain", "0.4-0.48", "--min-event", "60"});
  const std::string& text = outcome.errors;
  EXPECT_NE(text.find("From 0.400 to 0.480 s: 3 frames, 1 without boxes"), std::string::npos) << text;
  EXPECT_NE(text.find("0.440 s, frame 11: 10.0 % x 30.0 % at 50.0 %, 25.0 %"), std::string::npos) << text;
  EXPECT_NE(text.find("minimum box size: 3.0 % of the width or 5.0 % of the height"), std::string::npos);
  EXPECT_NE(text.find("not watched: the exclusion region \"tree\""), std::string::npos);
  EXPECT_NE(text.find("dropped: boxes in 18 frames from 0.040 to 0.760 s; --min-event requires 60.000 s"),
            std::string::npos);
}

TEST(EventsProgram, TheLampOfTheBuiltInSceneIsLightAndItsPeopleAreMotion) {
  const Folder folder;
  ASSERT_EQ(run_scene({"--events", folder / "e.json"}).status, 0);
  const Json::Value events = events_of(folder / "e.json");
  double first = 20;
  double last = 0;
  int light = 0;
  for (const Json::Value& event : events) {
    if (event["kind"] == "light") {
      ++light;
      EXPECT_DOUBLE_EQ(event["start"].asDouble(), 12) << "when the lamp is switched on";
      EXPECT_GT(event["light"]["after"].asDouble(), event["light"]["before"].asDouble());
      EXPECT_FALSE(event.isMember("objects"));
    } else {
      first = std::min(first, event["start"].asDouble());
      last = std::max(last, event["end"].asDouble());
      EXPECT_GE(event["objects"].size(), 1U);
    }
  }
  EXPECT_EQ(light, 1);
  EXPECT_LT(first, 4);
  EXPECT_GT(last, 16) << "people go on walking in the lamp's light";
}

TEST(EventsProgram, TheStreetHasNoLightEvents) {
  const char* clips = std::getenv("LIGHTMOTION_CLIPS");
  if (clips == nullptr) GTEST_SKIP() << "LIGHTMOTION_CLIPS names no folder with street.avi";
  const Folder folder;
  ASSERT_EQ(run_scene({std::string(clips) + "/street.avi", "--events", folder / "e.json"}).status, 0);
  const Json::Value events = events_of(folder / "e.json");
  EXPECT_GE(events.size(), 12U) << "people come and go for 79 s";
  for (const Json::Value& event : events) EXPECT_EQ(event["kind"], "motion");
}

}  // namespace
