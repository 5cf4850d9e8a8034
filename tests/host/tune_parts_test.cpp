// The parts of tune apart from the choice: documents, threads, samples, output.
#include <gtest/gtest.h>
#include <json/json.h>

#include <array>
#include <latch>
#include <numeric>
#include <sstream>

#include "host/base/failure.h"
#include "host/commands/tune/edit.h"
#include "host/commands/tune/picture.h"
#include "host/commands/tune/sample.h"
#include "host/commands/tune/side_by_side.h"
#include "host/commands/tune/table.h"
#include "tests/host/clips.h"
#include "tests/host/program.h"

namespace {

using namespace lm::host::base;
using namespace lm::host::events;
using namespace lm::host::source;
using namespace lm::host::commands::tune;
using namespace std::chrono_literals;
using program::Folder;

TEST(TuneEdit, ReplacesValuesInPlaceAndKeepsEverythingElse) {
  const std::string text = R"({
  // the gate
  "sensitivity": "-1", /* loud */ "other": [1, {"sensitivity": "9"}],
  "minBoxW" : 0.5
}
)";
  EXPECT_EQ(with_members(text, {{"minBoxW", "0.02"}, {"sensitivity", "2"}}), R"({
  // the gate
  "sensitivity": "2", /* loud */ "other": [1, {"sensitivity": "9"}],
  "minBoxW" : "0.02"
}
)");
}

TEST(TuneEdit, InsertsMissingMembersAtTheStart) {
  EXPECT_EQ(with_members(R"({"roi": []})", {{"lcAdap", "3"}, {"minBoxH", "0.1"}}), R"({
  "lcAdap": "3",
  "minBoxH": "0.1","roi": []})");
  EXPECT_EQ(with_members("/* none */ {}", {{"lcAdap", "3"}}), "/* none */ {\n  \"lcAdap\": \"3\"\n}");
}

TEST(TuneEdit, RefusesOtherThanObjects) {
  EXPECT_THROW(with_members("[]", {}), std::invalid_argument);
  EXPECT_THROW(with_members("{", {}), std::invalid_argument);
}

TEST(TuneSetting, HasTheTextsThatThePluginReads) {
  const Members expected{{"sensitivity", "4"}, {"lcAdap", "3"}, {"minBoxW", "0.02"}, {"minBoxH", "0.05"}};
  EXPECT_EQ(members_of({4, 3, 2U}), expected);
  EXPECT_TRUE(members_of({}).empty()) << "the starting configuration";
}

using Texts = std::array<std::string, 4>;

TEST(TuneSetting, ShowsTheStartsOwnValuesWhereNothingIsChanged) {
  const Own own = own_values(R"({"sensitivity": "5", "lcAdap": 2, "minBoxW": "0.25", "minBoxH": 0.5})");
  EXPECT_EQ(texts_of({}, own), (Texts{"5", "2", "0.25", "0.5"}));
  EXPECT_EQ(texts_of({1, {}, 0U}, own), (Texts{"1", "2", "0.01", "0.025"}));
  EXPECT_EQ(texts_of({}, own_values("{}")), (Texts{"default", "4", "0.05", "0.05"}));
  const Own adapts = own_values(R"({"adapt": true, "minBoxW": 0.3})");
  EXPECT_EQ(texts_of({}, adapts)[0], "auto");
  EXPECT_EQ(texts_of({3, {}, {}}, adapts)[0], "3");
  EXPECT_EQ(texts_of({}, adapts)[2], "0.3");
  EXPECT_EQ(texts_of({}, own_values(R"({"adapt": true, "sensitivity": 2})"))[0], "2");
}

TEST(TuneSetting, VariesOneValueEach) {
  const Own own{.sensitivity = 4, .adaptation = 5, .min_box = kMinBoxes[2]};
  // Sensitivity 1, 2, 3, 5; adaptation 1; eight minimum boxes.
  EXPECT_EQ(variations({}, own).size(), 13U);
  EXPECT_EQ(variations({}, {}).size(), 5U + 2U + 9U) << "nothing of the start's is among the levels";
  // Sensitivity 1, 3, 5 and that of the start; adaptation 1; eight minimum boxes.
  const std::vector<Setting> next = variations({2, {}, {}}, own);
  EXPECT_EQ(next.size(), 4U + 1U + 8U);
  for (const Setting& setting : next) {
    const int changes =
        (setting.sensitivity != 2) + setting.adaptation.has_value() + setting.min_box.has_value();
    EXPECT_EQ(changes, 1);
  }
}

TEST(TuneSetting, IsNearestToTheStartWithOneLargerMinimumBox) {
  const Own own{.sensitivity = 4, .adaptation = 3, .min_box = kMinBoxes[2]};
  const std::vector<Setting> nearest_first{{},          {{}, {}, 3U}, {{}, {}, 5U}, {{}, 1, {}},
                                           {3, {}, {}}, {1, {}, {}},  {{}, 1, 3U},  {3, 1, 3U}};
  for (std::size_t i = 1; i < nearest_first.size(); ++i) {
    EXPECT_LT(distance(nearest_first[i - 1], own), distance(nearest_first[i], own)) << i;
  }
}

TEST(TuneThreads, DoEachWorkOnceAndCountIt) {
  std::vector<int> times(50);
  std::vector<std::size_t> done;
  side_by_side(
      times.size(), 3, [&](std::size_t item) { ++times[item]; },
      [&](std::size_t number) { done.push_back(number); });
  EXPECT_EQ(times, std::vector<int>(50, 1));
  std::vector<std::size_t> rising(50);
  std::iota(rising.begin(), rising.end(), 1U);
  EXPECT_EQ(done, rising);
}

// Each waits until both have begun.
TEST(TuneThreads, WorkAtTheSameTime) {
  std::latch both(2);
  side_by_side(
      2, 2, [&](std::size_t) { both.arrive_and_wait(); }, [](std::size_t) {});
}

TEST(TuneThreads, PassOnTheFirstFailureAndBeginNothingMore) {
  std::size_t begun = 0;
  try {
    side_by_side(
        9, 1,
        [&](std::size_t item) {
          ++begun;
          if (item == 2) throw Failure(kRefused, "no 2");
        },
        [](std::size_t) {});
    FAIL() << "nothing thrown";
  } catch (const Failure& failure) {
    EXPECT_EQ(failure.status(), kRefused);
    EXPECT_STREQ(failure.what(), "no 2");
  }
  EXPECT_EQ(begun, 3U);
}

TEST(TuneSample, EndsAtItsLength) {
  const Folder folder;
  clips::write(folder / "a.mp4", {64, 48}, clips::regular(20, 40ms));
  std::int64_t read = 0;
  const Sample sample(folder / "a.mp4", {}, 400ms, [&](const Frame&) { ++read; });
  EXPECT_EQ(sample.frames(), 10) << "at 0 to 360 ms";
  EXPECT_EQ(sample.length(), 400ms);
  EXPECT_EQ(read, 10);
  std::vector<std::int64_t> numbers;
  sample.replay([&](const Frame& frame) { numbers.push_back(frame.number); });
  EXPECT_EQ(numbers, (std::vector<std::int64_t>{0, 1, 2, 3, 4, 5, 6, 7, 8, 9}));
  EXPECT_EQ(sample.trouble(), "") << "it was left, and did not break off";
}

Outcome small_outcome() {
  Outcome outcome;
  outcome.source = "hall.mp4";
  outcome.frames = 4;
  outcome.length = 4s;
  outcome.marks = {.quiet = {{0s, 1s}}, .motion = {{1s, 3s}}, .quiet_assumed = true};
  outcome.quiet_frames = 1;
  outcome.motion_frames = 2;
  outcome.own = {.sensitivity = 4, .adaptation = 3, .min_box = {0.01, 0.025}};
  outcome.moving = {{1, {0.4, 0.4, 0.1, 0.1}}, {2, {0.4, 0.4, 0.1, 0.1}}};
  Trial trial{.setting = {2, {}, 4U}, .seen = {}};
  const MotionBox box{{0.4, 0.4, 0.1, 0.1}, 1, {}};
  trial.seen.looks = {{0, {box}, 0}, {1'000'000, {box}, 0}, {2'000'000, {}, 0}, {3'000'000, {}, 2}};
  trial.figures = figures_of(trial.seen, outcome.marks, outcome.moving);
  outcome.trials = {{.setting = {}, .seen = trial.seen}, trial};
  outcome.chosen = 1;
  outcome.why = "Because.";
  outcome.document = R"({"sensitivity": "2"})";
  return outcome;
}

TEST(TuneTable, ShowsSpansFiguresAndTheProposal) {
  const std::string text = table_text(small_outcome());
  EXPECT_NE(text.find("quiet, in seconds: 0-1 (assumed); 1 frames"), std::string::npos) << text;
  EXPECT_NE(text.find("motion, in seconds: 1-3; 2 frames"), std::string::npos) << text;
  EXPECT_NE(text.find("Proposed: sensitivity 2, minBoxW 0.04, minBoxH 0.1. Because."), std::string::npos)
      << text;
  EXPECT_NE(text.find("50.0 %"), std::string::npos) << "one of two moving boxes is kept\n" << text;
  EXPECT_NE(text.find("  start\n>            2"), std::string::npos) << text;
}

TEST(TuneTable, ProposesTheStartInASentence) {
  Outcome outcome = small_outcome();
  outcome.chosen = 0;
  const std::string text = table_text(outcome);
  EXPECT_TRUE(text.ends_with("\nBecause.\n")) << text;
  EXPECT_EQ(text.find("Proposed"), std::string::npos);
}

TEST(TuneTable, HasTheSameFiguresForPrograms) {
  Json::Value root;
  std::istringstream(to_json(small_outcome())) >> root;
  EXPECT_EQ(root["configuration"]["sensitivity"], Json::Value("2"));
  EXPECT_EQ(root["quiet"]["spans"][0]["to"].asDouble(), 1);
  EXPECT_TRUE(root["quiet"]["assumed"].asBool());
  const Json::Value trial = root["trials"][root["chosen"].asUInt()];
  EXPECT_EQ(trial["settings"]["minBoxW"], Json::Value("0.04"));
  EXPECT_FALSE(trial["settings"].isMember("lcAdap")) << "as in the starting configuration";
  EXPECT_EQ(root["trials"][0]["settings"], Json::Value(Json::objectValue));
  EXPECT_EQ(trial["motion"]["kept"].asDouble(), 0.5);
  EXPECT_EQ(trial["quiet"]["frames_with_boxes"].asInt(), 1);
  EXPECT_EQ(trial["motion"]["frames_with_boxes"].asInt(), 1);
  EXPECT_EQ(trial["frames_with_boxes"].asInt(), 3);
}

// The chart starts at column 265 and is 760 wide; its second row starts at 138 and is 20 high; each look
// lasts a quarter.
TEST(TunePicture, ColoursEachLookByTheSpanThatItIsIn) {
  const cv::Mat picture = picture_of(small_outcome());
  const auto at = [&](int quarter) { return picture.at<cv::Vec3b>(138 + 10, 265 + 190 * quarter + 95); };
  const auto is = [](const cv::Vec3b& pixel, int most) {
    return pixel[most] > pixel[(most + 1) % 3] + 30 && pixel[most] > pixel[(most + 2) % 3] + 30;
  };
  EXPECT_TRUE(is(at(0), 2)) << "red: false";
  EXPECT_TRUE(is(at(1), 1)) << "green: found";
  EXPECT_FALSE(is(at(2), 0) || is(at(2), 1) || is(at(2), 2)) << "grey: nothing";
  EXPECT_GT(at(3)[2], at(3)[0] + 100) << "yellow: light";
  EXPECT_GT(at(3)[1], at(3)[0] + 100);
}

}  // namespace
