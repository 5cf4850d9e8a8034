// The program with the real detector, by handle and as a plug-in.
#include <gtest/gtest.h>

#include <cstdlib>
#include <opencv2/imgproc.hpp>

#include "host/base/json_text.h"
#include "host/source/scene/builtin_scene.h"
#include "tests/host/clips.h"
#include "tests/host/program.h"

namespace {

using namespace lm::host::base;
using namespace lm::host::source;
using namespace lm::host::source::scene;
using program::Folder;
using program::Outcome;

Outcome run_real(std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), "run");
  return program::run(arguments);
}

Outcome run_plugin(std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), {"--plugin", LIGHTMOTION_PLUGIN});
  return run_real(std::move(arguments));
}

// Writes the first frames of a source at another size.
void copy(Source& source, int count, cv::Size size, const std::string& file) {
  std::vector<cv::Mat> images;
  clips::Times times;
  for (Frame frame; static_cast<int>(images.size()) < count && source.next(frame);) {
    cv::resize(frame.image, images.emplace_back(), size, 0, 0, cv::INTER_AREA);
    times.push_back(frame.time);
  }
  clips::write(file, images, times);
}

bool covered(const std::string& line, cv::Point2d place) {
  const Json::Value boxes = parse_json(line)["boxes"];
  return std::any_of(boxes.begin(), boxes.end(), [&](const Json::Value& box) {
    return cv::Rect2d(box["x"].asDouble(), box["y"].asDouble(), box["width"].asDouble(),
                      box["height"].asDouble())
        .contains(place);
  });
}

std::string line_of_frame(const std::string& output, int frame) {
  for (const std::string& line : program::lines(output)) {
    if (line.starts_with("{\"frame\":" + std::to_string(frame) + ",")) return line;
  }
  return "";
}

TEST(Detection, FindsTheWalkerOfTheBuiltinSceneAndNothingBeforeTheSameEveryTime) {
  const Folder folder;
  BuiltinScene scene;
  copy(scene, 90, {320, 180}, folder / "a.mp4");
  const Outcome outcome = run_real({folder / "a.mp4", "--quiet"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.errors, "");
  const auto lines = program::lines(outcome.output);
  ASSERT_GT(lines.size(), 10U);
  EXPECT_EQ(line_of_frame(outcome.output, 49), "") << "two seconds without motion";
  // Frame 88: the walker has moved 38 steps of 43/16 pixels from column -40, to column 62 of 640; his coat is
  // near row 160 of 360.
  EXPECT_TRUE(covered(line_of_frame(outcome.output, 88), {62 / 640.0, 160 / 360.0})) << outcome.output;
  EXPECT_EQ(run_real({folder / "a.mp4", "--quiet"}).output, outcome.output);
}

TEST(Detection, RefusesADocumentInOneLine) {
  const Folder folder;
  program::write(folder / "c.json", R"({"roi": []})");
  const Outcome outcome = run_real({"-c", folder / "c.json"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.output, "");
  EXPECT_EQ(program::lines(outcome.errors).size(), 1U) << outcome.errors;
  EXPECT_TRUE(
      outcome.errors.starts_with("lightmotion: " + (folder / "c.json") + ":1:9: \"roi\": contains no region"))
      << outcome.errors;
}

TEST(Detection, ShowsTheLogLineOfAutomaticSensitivityWhenVerbose) {
  const Folder folder;
  clips::write(folder / "a.mp4", {32, 32}, clips::regular(2, std::chrono::milliseconds(40)));
  program::write(folder / "c.json", R"({"sensitivity": "-1"})");
  const Outcome outcome = run_plugin({folder / "a.mp4", "-c", folder / "c.json", "-v"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_NE(outcome.errors.find("lightmotion: plug-in: enable AUTO sensitivity\n"), std::string::npos);
}

// Numbers, which the plug-in reads only as texts, no region, and small boxes at every border of a small
// frame.
TEST(Detection, IsTheSameByHandleAndAsAPlugin) {
  const Folder folder;
  BuiltinScene scene;
  copy(scene, 200, {320, 180}, folder / "a.mp4");
  program::write(folder / "c.json",
                 R"({"sensitivity": 4, "lcAdap": null, "minBoxW": 0.02, "minBoxH": "0.05"})");
  const std::vector<std::string> arguments{folder / "a.mp4", "--quiet", "-c", folder / "c.json"};
  const Outcome by_handle = run_real(arguments);
  EXPECT_EQ(by_handle.status, 0);
  EXPECT_GT(program::lines(by_handle.output).size(), 100U);
  const Outcome as_plugin = run_plugin(arguments);
  EXPECT_EQ(as_plugin.errors, "");
  EXPECT_EQ(as_plugin.output, by_handle.output);
}

TEST(Detection, IsTheSameOnTheStreetClip) {
  const char* clips_folder = std::getenv("LIGHTMOTION_CLIPS");
  if (clips_folder == nullptr) GTEST_SKIP() << "LIGHTMOTION_CLIPS names no folder with street.avi";
  const std::vector<std::string> arguments{
      std::string(clips_folder) + "/street.avi", "--quiet", "--preset", "street", "--scale", "0.5"};
  const Outcome by_handle = run_real(arguments);
  EXPECT_GT(program::lines(by_handle.output).size(), 700U);
  EXPECT_EQ(run_plugin(arguments).output, by_handle.output);
}

TEST(Detection, KeysOfHandlesTakeEffectAndAreRefusedWithAPlugin) {
  const Folder folder;
  BuiltinScene scene;
  copy(scene, 90, {320, 180}, folder / "a.mp4");
  program::write(folder / "c.json", R"({"extent": "full", "peel": 0, "absorb_seconds": 60})");
  const std::vector<std::string> arguments{folder / "a.mp4", "--quiet", "-c", folder / "c.json"};
  EXPECT_NE(run_real(arguments).output, run_real({folder / "a.mp4", "--quiet"}).output);
  const Outcome refused = run_plugin(arguments);
  EXPECT_EQ(refused.status, 2);
  EXPECT_EQ(refused.output, "");
  EXPECT_EQ(refused.errors,
            "lightmotion: " + (folder / "c.json") +
                ": \"absorb_seconds\" cannot be used with --plugin: plug-ins do not know it\n");
}

// Positions read from the pictures: six seconds in, a man walks on the road on the right and three people
// stand by the lamp post. Most of them were there from the start, and the places that they left are taken
// back.
TEST(Detection, SurroundsThePeopleOfTheStreetClip) {
  const char* clips_folder = std::getenv("LIGHTMOTION_CLIPS");
  if (clips_folder == nullptr) GTEST_SKIP() << "LIGHTMOTION_CLIPS names no folder with street.avi";
  const Folder folder;
  copy(*open_source(std::string(clips_folder) + "/street.avi"), 61, {768, 576}, folder / "a.mp4");
  const Outcome outcome = run_real({folder / "a.mp4", "--quiet"});
  EXPECT_EQ(outcome.status, 0);
  const std::string line = line_of_frame(outcome.output, 60);
  EXPECT_TRUE(covered(line, {0.828, 0.49})) << line;
  EXPECT_TRUE(covered(line, {0.505, 0.385})) << line;
  EXPECT_FALSE(covered(line, {0.36, 0.43})) << "nobody is left where a man stood at first";
  EXPECT_FALSE(covered(line, {0.25, 0.75})) << "nobody is on the lawn";
}

}  // namespace
