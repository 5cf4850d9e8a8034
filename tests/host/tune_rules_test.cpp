// What tune counts, assumes and chooses, on constructed figures.
#include <gtest/gtest.h>

#include "host/commands/tune/assumption.h"
#include "host/commands/tune/choice.h"
#include "host/commands/tune/search.h"
#include "host/commands/tune/table.h"

namespace {

using namespace lm::host::events;
using namespace lm::host::commands::tune;
using std::chrono::microseconds;

TimeSpan span(int from, int to) { return {std::chrono::seconds(from), std::chrono::seconds(to)}; }

// Two looks per second; '#': a box, 'L': a box of a lighting change, anything else: none.
Seen seen(const std::string& looks) {
  Seen result;
  for (const char look : looks) {
    const auto time = static_cast<std::int64_t>(result.looks.size()) * 500'000;
    result.looks.push_back({time, look == '#' || look == 'L' ? 1 : 0, look == 'L' ? 1 : 0});
  }
  return result;
}

Happening motion(double from, double to) {
  return {static_cast<std::int64_t>(from * 1e6), static_cast<std::int64_t>(to * 1e6), EventKind::kMotion};
}

void expect_spans(const Spans& actual, const Spans& expected) {
  EXPECT_EQ(text_of(actual, false), text_of(expected, false));
}

TEST(TuneFigures, CountFramesFromASpansStartUpToItsEnd) {
  const Marks marks{.quiet = {span(0, 1)}, .motion = {span(1, 3)}};
  //                                        0   .5  1   1.5 2   2.5 3
  const Figures figures = figures_of(seen("-##-###"), marks);
  EXPECT_EQ(figures.frames, 5);
  EXPECT_EQ(figures.quiet_frames, 1) << "at 0.5; the one at 1 belongs to the motion";
  EXPECT_EQ(figures.motion_frames, 3) << "at 1, 2 and 2.5; 3 is the end";
}

TEST(TuneFigures, CountEventsInEveryKindOfSpanThatTheyTouch) {
  Seen all = seen("--------");
  all.happenings = {motion(0.5, 1.5), motion(3, 3.5)};
  const Figures figures = figures_of(all, {.quiet = {span(0, 1)}, .motion = {span(1, 3)}});
  EXPECT_EQ(figures.events, 2U);
  EXPECT_EQ(figures.quiet_events, 1U);
  EXPECT_EQ(figures.motion_events, 1U) << "the second begins where the span ends";
}

TEST(TuneFigures, CountEventsWhoseLastFrameIsTheFirstOfASpan) {
  const Marks marks{.quiet = {span(2, 3)}, .motion = {span(1, 2)}};
  Seen all = seen("--##-#--");
  all.happenings = {motion(0, 1), motion(0, 0.999999)};
  Figures figures = figures_of(all, marks);
  EXPECT_EQ(figures.motion_events, 1U);
  EXPECT_EQ(figures.found, 1U);
  EXPECT_EQ(figures.quiet_events, 0U);
  all.happenings = {motion(0, 0.999999), motion(1.5, 2)};
  figures = figures_of(all, marks);
  EXPECT_EQ(figures.quiet_events, 1U);
}

TEST(TuneFigures, CountASpanAsFoundWithBoxesAndAMotionEvent) {
  const Marks marks{.quiet = {}, .motion = {span(0, 1), span(1, 2), span(2, 3), span(3, 4)}};
  Seen all = seen("##--##--");
  Happening light = motion(2, 2.5);
  light.kind = EventKind::kLight;
  all.happenings = {motion(0, 1.5), light};
  // The second span has no boxes, the third only a lighting event, the fourth nothing.
  EXPECT_EQ(figures_of(all, marks).found, 1U);
}

TEST(TuneAssumption, AssumesMotionInTheBusiestSecondsAndQuietInTheCalmest) {
  // Boxes of 4, 3, 2, 1 and 0 of four settings: a quarter of the way is one setting.
  const std::vector<Seen> all{seen("########--"), seen("######----"), seen("####------"), seen("##--------")};
  const Marks marks = with_assumptions({}, all);
  expect_spans(marks.motion, {span(0, 2)});
  expect_spans(marks.quiet, {span(3, 5)});
  EXPECT_TRUE(marks.quiet_assumed);
  EXPECT_TRUE(marks.motion_assumed);
}

// With noise some settings have boxes all the time, which carries no information.
TEST(TuneAssumption, DependsOnDifferencesBetweenSecondsNotOnAbsoluteCounts) {
  const std::vector<Seen> all{seen("------##"), seen("------##"), seen("########"), seen("########")};
  const Marks marks = with_assumptions({}, all);
  expect_spans(marks.quiet, {span(0, 3)});
  expect_spans(marks.motion, {span(3, 4)});
}

TEST(TuneAssumption, FindsOneKindOfSecondIfTheyHardlyDiffer) {
  const Marks busy = with_assumptions({}, {seen("####"), seen("####"), seen("####"), seen("##--")});
  expect_spans(busy.motion, {span(0, 2)});
  expect_spans(busy.quiet, {});
  const Marks calm = with_assumptions({}, {seen("----"), seen("----"), seen("----"), seen("##--")});
  expect_spans(calm.motion, {});
  expect_spans(calm.quiet, {span(0, 2)});
}

// Seconds count as different where they differ by a third of the settings: here one of three.
TEST(TuneAssumption, FindsBothKindsWhereAThirdOfTheSettingsDiffers) {
  const Marks marks = with_assumptions({}, {seen("##--"), seen("----"), seen("----")});
  expect_spans(marks.motion, {span(0, 1)});
  expect_spans(marks.quiet, {span(1, 2)});
}

TEST(TuneAssumption, LeavesOutSecondsWithALightingChange) {
  const Marks marks = with_assumptions({}, {seen("--##-L##"), seen("--####--")});
  // The third second has a lighting change with one of the settings; the last has half of them.
  expect_spans(marks.quiet, {span(0, 1)});
  expect_spans(marks.motion, {span(1, 2)});
}

TEST(TuneAssumption, KeepsMarkedSpansAndLooksForTheOtherKindElsewhere) {
  const Marks marks = with_assumptions({.quiet = {}, .motion = {{microseconds(0), microseconds(1'500'000)}}},
                                       {seen("------##")});
  expect_spans(marks.motion, {{microseconds(0), microseconds(1'500'000)}});
  EXPECT_FALSE(marks.motion_assumed);
  expect_spans(marks.quiet, {span(2, 3)});
  EXPECT_TRUE(marks.quiet_assumed);
}

const Marks kMarks{.quiet = {span(0, 5)}, .motion = {span(5, 10), span(15, 20)}};

// `motion`: frames with boxes in motion spans.
Candidate candidate(const Setting& setting, std::int64_t quiet, std::size_t found, std::int64_t motion) {
  Candidate result{.setting = setting, .figures = {}};
  result.figures.quiet_frames = quiet;
  result.figures.found = found;
  result.figures.motion_frames = motion;
  return result;
}

TEST(TuneChoice, PutsQuietBeforeMotion) {
  EXPECT_EQ(choose({candidate({5, 3, 2}, 1, 2, 100), candidate({4, 3, 2}, 0, 1, 40)}, kMarks), 1U);
}

TEST(TuneChoice, NeverPrefersASettingThatFindsNothing) {
  EXPECT_EQ(choose({candidate({1, 3, 6}, 0, 0, 0), candidate({4, 3, 2}, 9, 1, 40)}, kMarks), 1U);
  EXPECT_EQ(choose({candidate({1, 3, 6}, 3, 0, 0), candidate({4, 3, 2}, 2, 0, 0)}, kMarks), 1U)
      << "where none finds anything, the quietest";
}

TEST(TuneChoice, TakesTheMostSpansOfMotionAmongTheQuiet) {
  EXPECT_EQ(choose({candidate({1, 3, 6}, 0, 1, 90), candidate({4, 3, 2}, 0, 2, 80)}, kMarks), 1U);
}

TEST(TuneChoice, LosesAtMostATwentiethOfTheFramesForLessSensitivity) {
  const Candidate best = candidate({5, 3, 2}, 0, 2, 100);
  EXPECT_EQ(choose({best, candidate({1, 3, 2}, 0, 2, 95)}, kMarks), 1U);
  EXPECT_EQ(choose({best, candidate({1, 3, 2}, 0, 2, 94)}, kMarks), 0U);
}

TEST(TuneChoice, PrefersLowSensitivityThenLargeMinimumBoxesThenTheDefaultAdaptation) {
  const auto equal = [](const Setting& setting) { return candidate(setting, 0, 2, 100); };
  EXPECT_EQ(choose({equal({2, 3, 6}), equal({1, 5, 0})}, kMarks), 1U);
  EXPECT_EQ(choose({equal({1, 3, 0}), equal({1, 5, 1})}, kMarks), 1U);
  EXPECT_EQ(choose({equal({1, 1, 1}), equal({1, 5, 1}), equal({1, 3, 1})}, kMarks), 2U);
}

TEST(TuneChoice, IsTheMostSensitiveQuietSettingWithoutKnownMotion) {
  const Marks marks{.quiet = {span(0, 5)}, .motion = {}};
  EXPECT_EQ(choose({candidate({5, 3, 0}, 1, 0, 0), candidate({3, 3, 0}, 0, 0, 0),
                    candidate({4, 3, 3}, 0, 0, 0), candidate({4, 3, 1}, 0, 0, 0)},
                   marks),
            3U);
}

TEST(TuneWhy, StatesWhatWasReached) {
  const std::string text = why({candidate({2, 3, 2}, 0, 2, 80)}, 0, kMarks);
  EXPECT_NE(text.find("no boxes in the quiet spans"), std::string::npos) << text;
  EXPECT_NE(text.find("finds 2 of 2 motion spans, with boxes in 80 of their frames"), std::string::npos)
      << text;
}

TEST(TuneWhy, StatesTheCostOfQuiet) {
  const std::vector<Candidate> all{candidate({2, 3, 2}, 0, 1, 40), candidate({4, 3, 2}, 7, 2, 80),
                                   candidate({5, 3, 2}, 9, 2, 90)};
  const std::string text = why(all, 0, kMarks);
  EXPECT_NE(text.find("Sensitivity 4 would find 2, but has boxes in 7 frames of the quiet spans"),
            std::string::npos)
      << text;
}

TEST(TuneWhy, ReportsThatThereIsNoBasisForAChoice) {
  EXPECT_NE(why({candidate({2, 3, 2}, 0, 0, 0)}, 0, Marks{}).find("--quiet and --motion"), std::string::npos);
}

// A simulated plug-in: boxes from noise at sensitivities above 2; finds motion if the minimum box size is at
// most the fifth.
Seen imagined(const Setting& setting) {
  const char noise = setting.sensitivity > 2 ? '#' : '-';
  const char moving = setting.min_box <= 4 || noise == '#' ? '#' : '-';
  Seen result = seen(std::string(4, noise) + std::string(4, moving));
  if (moving == '#') result.happenings = {motion(2, 3.5)};
  return result;
}

// From small minimum boxes, two steps away.
TEST(TuneSearch, ContinuesStepByStepWhileResultsImprove) {
  Outcome outcome;
  search(outcome, [](const std::vector<Setting>& settings) {
    std::vector<Seen> all;
    for (const Setting& setting : settings)
      all.push_back(seen(setting.min_box <= 2 ? "----####" : "--------"));
    return all;
  });
  EXPECT_EQ(outcome.trials[outcome.chosen].setting, (Setting{1, 3, 2}));
}

TEST(TuneSearch, FindsTheBestSettingBetweenPointsOfTheCoarseGrid) {
  Outcome outcome;
  std::size_t tried = 0;
  search(outcome, [&](const std::vector<Setting>& settings) {
    std::vector<Seen> all;
    for (const Setting& setting : settings) all.push_back(imagined(setting));
    tried += settings.size();
    return all;
  });
  expect_spans(outcome.marks.quiet, {span(0, 2)});
  expect_spans(outcome.marks.motion, {span(2, 4)});
  EXPECT_EQ(outcome.quiet_frames, 4);
  EXPECT_EQ(outcome.motion_frames, 4);
  EXPECT_EQ(outcome.trials[outcome.chosen].setting, (Setting{1, 3, 4}));
  EXPECT_EQ(outcome.trials.size(), tried) << "nothing is tried twice";
}

TEST(TuneSearch, ListsTheLeastSensitiveFirst) {
  Outcome outcome;
  search(outcome, [](const std::vector<Setting>& settings) {
    return std::vector<Seen>(settings.size(), seen("--##"));
  });
  for (std::size_t i = 1; i < outcome.trials.size(); ++i) {
    EXPECT_LE(outcome.trials[i - 1].setting.sensitivity, outcome.trials[i].setting.sensitivity);
  }
}

}  // namespace
