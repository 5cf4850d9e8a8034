// `lightmotion tune` as built, on the built-in scene scaled down.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <json/json.h>
#include <sched.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdint>
#include <sstream>

#include "tests/host/clips.h"
#include "tests/host/program.h"

namespace {

using namespace std::chrono_literals;
using program::Folder;
using program::Outcome;

Json::Value parsed(const std::string& text) {
  Json::Value value;
  std::istringstream(text) >> value;
  return value;
}

// The scene's first two seconds contain only sensor noise; people appear afterwards.
const std::vector<std::string> kSmall{"--scale", "0.5", "--fps", "5", "--plugin", LIGHTMOTION_PLUGIN};

Outcome with_small_scene(std::vector<std::string> arguments) {
  arguments.insert(arguments.end(), kSmall.begin(), kSmall.end());
  return program::run(arguments);
}

TEST(TuneProgram, KeepsQuietWhatIsQuietAndFindsThePeople) {
  const Folder folder;
  const Outcome outcome = with_small_scene({"tune", "--quiet", "0-2", "--motion", "3-9", "-o",
                                            folder / "own.json", "--picture", folder / "p.png"});
  EXPECT_EQ(outcome.status, 0) << outcome.errors;
  EXPECT_EQ(outcome.output, "");
  EXPECT_NE(outcome.errors.find("no boxes in the quiet spans. It finds 1 of 1 motion spans"),
            std::string::npos)
      << outcome.errors;
  EXPECT_TRUE(program::read(folder / "p.png").starts_with("\x89PNG"));
  const Outcome run = with_small_scene({"run", "--quiet", "--config", folder / "own.json"});
  EXPECT_EQ(run.status, 0) << run.errors;
  std::size_t moving = 0;
  for (const std::string& line : program::lines(run.output)) {
    const double time = parsed(line)["time"].asDouble();
    EXPECT_GE(time, 2) << line;
    if (time >= 3 && time < 9) ++moving;
  }
  EXPECT_GE(moving, 20U) << "of 30 frames";
}

// Frames of `run` with boxes in a time span.
std::int64_t frames_between(const std::vector<std::string>& lines, const Json::Value& span) {
  return std::count_if(lines.begin(), lines.end(), [&](const std::string& line) {
    const double time = parsed(line)["time"].asDouble();
    return time >= span["from"].asDouble() && time < span["to"].asDouble();
  });
}

TEST(TuneProgram, FindsTheSpansItselfAndCountsForEachSettingWhatARunWithItFinds) {
  const Folder folder;
  const Json::Value start = parsed(program::run({"presets", "street"}).output);
  const Outcome outcome = with_small_scene({"tune", "--json"});
  EXPECT_EQ(outcome.status, 0) << outcome.errors;
  const Json::Value root = parsed(outcome.output);
  ASSERT_TRUE(root["quiet"]["assumed"].asBool() && root["motion"]["assumed"].asBool());
  ASSERT_FALSE(root["quiet"]["spans"].empty());
  EXPECT_EQ(root["quiet"]["spans"][0]["from"].asDouble(), 0);
  EXPECT_EQ(root["quiet"]["spans"][0]["to"].asDouble(), 1) << "a second before somebody comes";
  const Json::Value& trials = root["trials"];
  EXPECT_EQ(trials[0]["settings"], Json::Value(Json::objectValue));
  for (const Json::ArrayIndex place : {0U, trials.size() / 2, trials.size() - 1, root["chosen"].asUInt()}) {
    const Json::Value& trial = trials[place];
    Json::Value document = start;
    for (const std::string& key : trial["settings"].getMemberNames()) document[key] = trial["settings"][key];
    program::write(folder / "c.json", Json::FastWriter().write(document));
    const Outcome run =
        with_small_scene({"run", "--quiet", "--config", folder / "c.json", "--events", folder / "e.json"});
    const auto lines = program::lines(run.output);
    EXPECT_EQ(trial["frames_with_boxes"].asUInt64(), lines.size()) << trial;
    EXPECT_EQ(trial["event_count"].asUInt(), parsed(program::read(folder / "e.json"))["events"].size())
        << trial;
    for (const char* kind : {"quiet", "motion"}) {
      std::int64_t frames = 0;
      for (const Json::Value& span : root[kind]["spans"]) frames += frames_between(lines, span);
      EXPECT_EQ(trial[kind]["frames_with_boxes"].asInt64(), frames) << kind << ' ' << trial;
    }
  }
}

TEST(TuneProgram, StartsFromWhatRunsWithoutAConfiguration) {
  const Folder folder;
  const std::vector<std::string> part{"--scale", "0.5", "--fps", "5"};
  std::vector<std::string> tune{"tune", "--seconds", "5", "--json"};
  std::vector<std::string> run{"run", "--quiet", "-o", folder / "lines"};
  tune.insert(tune.end(), part.begin(), part.end());
  run.insert(run.end(), part.begin(), part.end());
  const Json::Value root = parsed(program::run(tune).output);
  EXPECT_TRUE(root["configuration"]["adapt"].asBool());
  program::run(run);
  std::int64_t frames = 0;
  for (const std::string& line : program::lines(program::read(folder / "lines"))) {
    if (parsed(line)["time"].asDouble() < 5) ++frames;
  }
  EXPECT_GT(frames, 0);
  EXPECT_EQ(root["trials"][0]["frames_with_boxes"].asInt64(), frames);
}

TEST(TuneProgram, LeavesRegionsAndEverythingElseOfADocumentAsTheyAre) {
  const Folder folder;
  const std::string rest = R"( // mine
  "roi": [{"name": "left", "points": [{"x": "-1", "y": "0"}, {"x": "0.5", "y": "0"}, {"x": "0.5", "y": "1"}]}],
  "minBoxH": "0.1", "minBoxW": "0.1", "lcAdap": "1"})";
  program::write(folder / "old.json", R"({"sensitivity": "5",)" + rest);
  const Outcome outcome = with_small_scene({"tune", "--seconds", "5", "--config", folder / "old.json"});
  EXPECT_EQ(outcome.status, 0) << outcome.errors;
  EXPECT_NE(outcome.output.find(" // mine\n  \"roi\": [{\"name\": \"left\""), std::string::npos)
      << outcome.output;
  Json::Value before = parsed(program::read(folder / "old.json"));
  EXPECT_EQ(parsed(outcome.output)["roi"], before["roi"]);
}

TEST(TuneProgram, RefusesWhatCannotWork) {
  const Folder folder;
  const auto errors_of = [](std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), "tune");
    const Outcome outcome = with_small_scene(arguments);
    EXPECT_EQ(outcome.status, 2) << outcome.errors;
    return outcome.errors;
  };
  EXPECT_NE(errors_of({"--quiet", "2"}).find("such as 0-12.5, not 2"), std::string::npos);
  EXPECT_NE(errors_of({"--motion", "3-3"}).find("such as 0-12.5, not 3-3"), std::string::npos);
  EXPECT_NE(errors_of({"--picture", "a.jpg"}).find("must end in .png, not a.jpg"), std::string::npos);
  EXPECT_NE(errors_of({"--quiet", "99-100"}).find("begins after the end of the sample"), std::string::npos);
  program::write(folder / "bad.json", "{");
  EXPECT_NE(errors_of({"--config", folder / "bad.json"}).find("bad.json"), std::string::npos);
  clips::write(folder / "a.mp4", {64, 48}, clips::regular(3, 40ms));
  EXPECT_NE(errors_of({folder / "a.mp4", "-o", folder / "a.mp4"}).find("would overwrite the source"),
            std::string::npos);
}

TEST(TuneProgram, StoppedWritesNothing) {
  const Folder folder;
  std::vector<std::string> arguments{"tune", "-o", folder / "own.json", "--picture", folder / "p.png"};
  arguments.insert(arguments.end(), kSmall.begin(), kSmall.end());
  const Folder streams;
  const int errors = ::open((streams / "errors").c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, 0600);
  const pid_t process = program::start(arguments, errors, errors);
  // Its hidden output files exist before anything is read.
  while (folder.names().size() < 2) sched_yield();
  kill(process, SIGINT);
  EXPECT_EQ(program::wait_for(process), 130);
  close(errors);
  EXPECT_NE(program::read(streams / "errors").find("interrupted"), std::string::npos);
  EXPECT_TRUE(folder.names().empty());
}

}  // namespace
