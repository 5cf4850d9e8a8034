// Failures of detectors and sources are reported, and the server recovers.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "host/base/failure.h"
#include "host/commands/serve/detector_process.h"
#include "host/commands/serve/wire.h"
#include "tests/host/clips.h"
#include "tests/host/program.h"
#include "tests/host/serve_page.h"

namespace {

using namespace lm::host::base;
using namespace lm::host::commands::serve;
using lm::host::detector::Boxes;
using namespace std::chrono_literals;
using program::Folder;
using serve::Answer;
using serve::Page;
using testing::HasSubstr;

constexpr auto kNoProblem = [](const Json::Value& state) { return state["problem"] == ""; };
constexpr auto kProblem = [](const Json::Value& state) { return state["problem"] != ""; };

std::string fake(const char* behaviour) { return std::string(R"({"comment":")") + behaviour + "\"}"; }

serve::Setup with_fake(const char* behaviour) {
  return {.document = fake(behaviour), .plugin = LIGHTMOTION_FAKE_PLUGIN, .patience = 500ms};
}

TEST(ServeDetector, ThatDiesIsReportedUntilAnotherDocumentHelps) {
  Page page(with_fake("frame dies"));
  const Json::Value state = page.state_with(kProblem);
  EXPECT_EQ(state["problem"], "the detector failed: the process was terminated by a signal: Killed");
  EXPECT_EQ(page.post("/api/apply", fake("well")).status, 200);
  EXPECT_FALSE(page.state_with(kNoProblem).isNull());
  EXPECT_FALSE(page.picture_with([](const Json::Value& one) { return !one["boxes"].empty(); }).isNull());
}

TEST(ServeDetector, ThatHangsTimesOut) {
  Page page(with_fake("frame waits"));
  EXPECT_EQ(page.state_with(kProblem)["problem"], "no answer from the detector for 0.500 s");
}

TEST(ServeDetector, ThatThrowsIsReported) {
  Page page(with_fake("frame throws"));
  EXPECT_THAT(page.state_with(kProblem)["problem"].asString(),
              HasSubstr("\"stoll\" while processing a frame"));
}

TEST(ServeDetector, ThatRefusesADocumentLeavesTheOneBefore) {
  Page page(with_fake("well"));
  for (const char* behaviour : {"refuse", "refuse mute", "throw"}) {
    const Answer answer = page.post("/api/apply", fake(behaviour));
    EXPECT_EQ(answer.status, 422) << behaviour;
    EXPECT_THAT(answer.json["error"].asString(), HasSubstr("the plug-in refuses it")) << behaviour;
  }
  EXPECT_EQ(page.state()["configuration"], fake("well"));
  EXPECT_EQ(page.state()["problem"], "");
}

TEST(ServeDetector, ThatFailsInTheComparisonEndsIt) {
  Page page(with_fake("well"));
  const std::string document = Json::valueToQuotedString(fake("frame dies").c_str());
  EXPECT_EQ(page.post("/api/compare", "{\"configuration\":" + document + "}").status, 200);
  const Json::Value state = page.state_with(kProblem);
  EXPECT_THAT(state["problem"].asString(), HasSubstr("the comparison ended"));
  EXPECT_EQ(state["comparing"], false);
  EXPECT_EQ(page.next_picture().status, 200);
}

TEST(ServeDetector, IsRefusedAtTheStart) {
  EXPECT_THROW(Page(with_fake("refuse")), Failure);
  EXPECT_THROW(Page({.document = "{"}), Failure);
  EXPECT_THROW(Page({.plugin = "/nowhere/plugin.so"}), Failure);
}

TEST(DetectorProcess, AnswersWhatThePluginDoes) {
  DetectorProcess detector({.plugin = LIGHTMOTION_FAKE_PLUGIN, .program = LIGHTMOTION_PROGRAM}, fake("pixel"),
                           {4, 4});
  const cv::Mat image(4, 4, CV_8UC3, cv::Scalar(64, 0, 0));
  EXPECT_TRUE(detector.process(image, 1).boxes.empty()) << "the first frame has no box";
  const Boxes second = detector.process(image, 41).boxes;
  ASSERT_EQ(second.size(), 1U);
  EXPECT_EQ(second[0].area, cv::Rect2d(0.5, 0.25, 0.1, 0.25)) << "64 of 256";
  EXPECT_EQ(second[0].regions, std::vector<std::string>{"frame"});
  detector.restart();
  EXPECT_TRUE(detector.process(image, 1).boxes.empty()) << "a first frame again";
}

TEST(DetectorProcess, TakesImagesWhoseRowsHavePadding) {
  DetectorProcess detector({.plugin = "", .program = LIGHTMOTION_PROGRAM}, "{}", {64, 48});
  const cv::Mat wide(48, 80, CV_8UC3, cv::Scalar::all(60));
  cv::Mat moved = wide.clone();
  moved(cv::Rect(10, 10, 30, 30)) = cv::Scalar::all(220);
  const cv::Rect part(0, 0, 64, 48);
  for (int i = 0; i < 3; ++i) detector.process(wide(part), 1 + 40 * i);
  EXPECT_EQ(detector.process(moved(part), 121).boxes.size(), 1U);
}

// What stands for five seconds: kept by a detector that adapts, background by default.
TEST(DetectorProcess, AdaptsAndScales) {
  const auto boxes_after_five_seconds = [](const std::string& document) {
    DetectorProcess detector({.plugin = "", .program = LIGHTMOTION_PROGRAM}, document, {128, 96});
    const cv::Mat empty(48, 64, CV_8UC3, cv::Scalar::all(60));
    cv::Mat moved = empty.clone();
    moved(cv::Rect(10, 10, 30, 30)) = cv::Scalar::all(220);
    for (int i = 0; i < 10; ++i) detector.process(empty, 1 + 40 * i);
    for (int i = 10; i < 135; ++i) detector.process(moved, 1 + 40 * i);
    return detector.process(moved, 5401).boxes.size();
  };
  EXPECT_EQ(boxes_after_five_seconds(R"({"adapt": true})"), 1U);
  EXPECT_EQ(boxes_after_five_seconds("{}"), 0U);
}

TEST(Wire, CarriesBoxes) {
  const Boxes boxes{{{0.1, 0.2, 0.3, 0.4}, {"a", "", "gate \"b\""}}, {{0, 0, 1, 1}}};
  const auto back = boxes_from(bytes_of(boxes));
  ASSERT_TRUE(back);
  ASSERT_EQ(back->size(), 2U);
  EXPECT_EQ(back->at(0).area, boxes[0].area);
  EXPECT_EQ(back->at(0).regions, boxes[0].regions);
  EXPECT_EQ(back->at(1).area, boxes[1].area);
  EXPECT_TRUE(boxes_from("")->empty());
}

TEST(Wire, RefusesBoxesThatBreakOff) {
  const std::string bytes = bytes_of({{{0.1, 0.2, 0.3, 0.4}, {"gate"}}});
  for (std::size_t length = 1; length < bytes.size(); ++length)
    EXPECT_FALSE(boxes_from(bytes.substr(0, length))) << length;
}

TEST(ServeSource, IsPlayedInALoopAndReopened) {
  const Folder folder;
  const std::string file = folder / "a.mp4";
  clips::write(file, {64, 48}, clips::regular(10, 40ms));
  Page page({.source = file});
  EXPECT_FALSE(page.state_with([](const Json::Value& state) { return state["loop"].asInt() >= 3; }).isNull());
  std::filesystem::rename(file, folder / "away.mp4");
  EXPECT_THAT(page.state_with(kProblem)["problem"].asString(), HasSubstr("No such file"));
  std::filesystem::rename(folder / "away.mp4", file);
  EXPECT_FALSE(page.state_with(kNoProblem).isNull());
  EXPECT_EQ(page.next_picture().status, 200);
}

TEST(ServeSource, MayComeBackInAnotherSize) {
  const Folder folder;
  const std::string file = folder / "a.mp4";
  clips::write(file, {64, 48}, clips::regular(10, 40ms));
  Page page({.source = file});
  clips::write(file, {96, 64}, clips::regular(10, 40ms));
  const Json::Value state =
      page.state_with([](const Json::Value& now) { return now["source"]["width"].asInt() == 96; });
  EXPECT_EQ(state["source"]["height"], 64);
  EXPECT_EQ(page.state()["problem"], "");
  EXPECT_EQ(page.next_picture().status, 200);
}

TEST(ServeSource, ThatIsDamagedIsReported) {
  const Folder folder;
  const std::string file = folder / "a.mkv";
  clips::write_busy(folder / "whole.mkv", {64, 48}, 50);
  const std::string bytes = program::read(folder / "whole.mkv");
  program::write(file, bytes.substr(0, bytes.size() / 2));
  Page page({.source = file});
  EXPECT_THAT(page.state_with(kProblem)["problem"].asString(), HasSubstr("ends early"));
}

}  // namespace
