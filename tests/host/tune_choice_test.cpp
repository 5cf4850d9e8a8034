// What tune tries, chooses and tells, on constructed figures.
#include <gtest/gtest.h>

#include "host/commands/tune/choice.h"
#include "host/commands/tune/search.h"
#include "tests/host/tune_looks.h"

namespace {

using namespace tune_looks;

const Marks kMarks{.quiet = {span(0, 5)}, .motion = {span(5, 10), span(15, 20)}};
const Marks kProved{
    .quiet = {span(0, 5)}, .motion = {span(5, 10)}, .quiet_assumed = true, .motion_assumed = true};

// Of a setting, in marked spans. `motion`: frames with boxes in motion spans.
Candidate marked(std::int64_t quiet, std::size_t found, std::int64_t motion, double far = 1) {
  Candidate result;
  result.figures.quiet_frames = quiet;
  result.figures.found = found;
  result.figures.motion_frames = motion;
  result.distance = {far, 0, 0, 0};
  return result;
}

// Without marks. `kept`: of the boxes around what moves.
Candidate unmarked(std::int64_t quiet, std::int64_t kept, double far = 1) {
  Candidate result = marked(quiet, 1, kept, far);
  result.figures.kept = kept;
  return result;
}

TEST(TuneChoice, StaysAtTheStartOnATie) {
  EXPECT_EQ(choose({marked(3, 2, 80), marked(3, 2, 80)}, kMarks), 0U);
  EXPECT_EQ(choose({unmarked(6, 80), unmarked(6, 80)}, kProved), 0U);
  EXPECT_EQ(choose({unmarked(6, 80)}, kProved), 0U);
}

TEST(TuneChoice, TakesWhatHasFewerBoxesInQuietSpans) {
  EXPECT_EQ(choose({marked(3, 2, 80), marked(2, 2, 80), marked(1, 2, 80)}, kMarks), 2U);
  EXPECT_EQ(choose({marked(3, 2, 80), marked(2, 2, 80)}, kMarks), 1U);
}

TEST(TuneChoice, ChangesTheStartForHalfOfTheBoxesInProvedQuietAndForFiveFrames) {
  EXPECT_EQ(choose({unmarked(20, 80), unmarked(11, 80)}, kProved), 0U);
  EXPECT_EQ(choose({unmarked(20, 80), unmarked(10, 80)}, kProved), 1U);
  EXPECT_EQ(choose({unmarked(4, 80), unmarked(0, 80)}, kProved), 0U);
  EXPECT_EQ(choose({unmarked(5, 80), unmarked(0, 80)}, kProved), 1U);
}

TEST(TuneChoice, LosesNoMarkedSpanAndAtMostATwentiethOfItsFrames) {
  EXPECT_EQ(choose({marked(3, 2, 100), marked(0, 1, 100)}, kMarks), 0U);
  EXPECT_EQ(choose({marked(3, 2, 100), marked(0, 2, 94)}, kMarks), 0U);
  EXPECT_EQ(choose({marked(3, 2, 100), marked(0, 2, 95)}, kMarks), 1U);
}

TEST(TuneChoice, LosesAtMostAHundredthOfTheBoxesAroundWhatMoves) {
  EXPECT_EQ(choose({unmarked(6, 200), unmarked(0, 197)}, kProved), 0U);
  EXPECT_EQ(choose({unmarked(6, 200), unmarked(0, 198)}, kProved), 1U);
}

TEST(TuneChoice, TakesWhatFindsMoreOfMarkedMotionAndIsAsQuiet) {
  EXPECT_EQ(choose({marked(3, 1, 80), marked(3, 2, 80)}, kMarks), 1U);
  EXPECT_EQ(choose({marked(3, 1, 80), marked(4, 2, 80)}, kMarks), 0U) << "less quiet";
  EXPECT_EQ(choose({marked(3, 2, 95), marked(3, 2, 100)}, kMarks), 0U) << "a twentieth more is a tie";
  EXPECT_EQ(choose({marked(3, 2, 94), marked(3, 2, 100)}, kMarks), 1U);
  EXPECT_EQ(choose({unmarked(6, 80), unmarked(6, 120)}, kProved), 0U) << "more boxes prove nothing";
}

TEST(TuneChoice, DoesNotStayWithWhatFindsNothingOfMarkedMotion) {
  EXPECT_EQ(choose({marked(0, 0, 0), marked(9, 1, 40)}, kMarks), 1U);
}

TEST(TuneChoice, OfTheQuietestTakesTheOneThatFindsMost) {
  EXPECT_EQ(choose({marked(3, 1, 80), marked(0, 1, 90), marked(0, 2, 80)}, kMarks), 2U);
  EXPECT_EQ(choose({marked(3, 2, 80), marked(0, 2, 80, 1), marked(0, 2, 100, 2)}, kMarks), 2U);
}

TEST(TuneChoice, OfEqualsTakesTheNearestToTheStart) {
  EXPECT_EQ(choose({marked(3, 2, 80), marked(0, 2, 100, 2), marked(0, 2, 95, 1)}, kMarks), 2U);
  EXPECT_EQ(choose({unmarked(6, 80), unmarked(0, 80, 2), unmarked(0, 80, 1)}, kProved), 2U);
}

TEST(TuneWhy, ComparesWithTheStart) {
  const std::vector<Candidate> all{marked(7, 1, 40), marked(0, 2, 80)};
  EXPECT_EQ(why(all, 1, kMarks),
            "It has boxes in 0 frames of the quiet spans, the start in 7. It finds 2 of 2 motion spans, with "
            "boxes in "
            "80 of their frames; the start finds 1, in 40. Of the settings with equal results, it is the "
            "nearest to "
            "the start.");
  EXPECT_NE(why({unmarked(6, 200), unmarked(0, 199)}, 1, kProved)
                .find("It keeps 99.5 % of the boxes around what moves"),
            std::string::npos);
}

TEST(TuneWhy, StatesWhyTheStartIsKept) {
  const auto kept = [](const Candidate& start, const Marks& marks) { return why({start}, 0, marks); };
  EXPECT_NE(
      kept(marked(0, 2, 80), kMarks).find("is kept: it has no boxes in the quiet spans. It finds 2 of 2"),
      std::string::npos);
  EXPECT_NE(kept(unmarked(6, 80), kProved).find("boxes in 6 frames of the quiet spans, and no setting"),
            std::string::npos);
  const Marks nothing{.quiet = {}, .motion = {}, .quiet_assumed = true, .motion_assumed = true};
  EXPECT_NE(kept(unmarked(0, 0), nothing).find("no part of the sample is known to be quiet"),
            std::string::npos);
  EXPECT_NE(kept(unmarked(0, 0), nothing).find("--quiet and --motion"), std::string::npos);
}

TEST(TuneWhy, WarnsWhenTheSensitivityNoLongerFollowsTheNoise) {
  std::vector<Candidate> all{unmarked(6, 80), unmarked(0, 80)};
  all[1].setting.sensitivity = 2;
  EXPECT_EQ(why(all, 1, kProved).find("noise"), std::string::npos);
  EXPECT_NE(why(all, 1, kProved, true).find("no longer follows the noise"), std::string::npos);
}

// A simulated detector. The people walk by from 3 to 4.5 s; noise has boxes in place before, at sensitivities
// above 2 or with minimum boxes below the fourth; the people are lost from the sixth on.
Seen imagined(const Setting& setting) {
  const std::size_t box = setting.min_box.value_or(2);
  Seen result = moving_along(box < 6 ? kWalk : std::vector<double>(kWalk.size(), kNone));
  if (setting.sensitivity.value_or(4) > 2 || box < 4) {
    for (std::size_t i = 0; i < 4; ++i) result.looks[i].boxes.push_back({kBox, 9, {}});
  }
  return result;
}

Outcome searched(const std::function<Seen(const Setting&)>& detector) {
  Outcome outcome;
  outcome.own = {.sensitivity = 4, .min_box = kMinBoxes[2]};
  std::size_t tried = 0;
  search(outcome, [&](const std::vector<Setting>& settings) {
    std::vector<Seen> all;
    for (const Setting& setting : settings) all.push_back(detector(setting));
    tried += settings.size();
    return all;
  });
  EXPECT_EQ(outcome.trials.size(), tried) << "nothing is tried twice";
  EXPECT_EQ(outcome.trials[0].setting, Setting{});
  return outcome;
}

// Neither change is enough alone, so the first round stays at the start.
TEST(TuneSearch, StaysAtTheStartUnlessOneChangeHelps) {
  const Outcome outcome = searched(imagined);
  expect_spans(outcome.marks.quiet, {span(0, 2), span(6, 8)});
  expect_spans(outcome.marks.motion, {span(3, 5)});
  EXPECT_EQ(outcome.quiet_frames, 8);
  EXPECT_EQ(outcome.motion_frames, 4);
  EXPECT_EQ(outcome.chosen, 0U);
}

TEST(TuneSearch, ContinuesAroundTheBest) {
  // Eight boxes in quiet spans: one change removes five of them, the other three.
  const Outcome outcome = searched([](const Setting& setting) {
    Seen result = imagined({1, {}, std::max<std::size_t>(4, setting.min_box.value_or(4))});
    const bool low = setting.sensitivity.value_or(4) <= 2;
    const bool large = setting.min_box.value_or(2) >= 4;
    for (const std::size_t i : {0U, 1U, 2U, 3U, 12U, 13U, 14U, 15U}) {
      if (!(i < 13 ? low : large)) result.looks[i].boxes.push_back({kBox, 9, {}});
    }
    return result;
  });
  EXPECT_EQ(outcome.trials[outcome.chosen].setting, (Setting{2, {}, 4U}));
  EXPECT_EQ(outcome.trials[outcome.chosen].figures.quiet_frames, 0);
}

TEST(TuneSearch, TheStartAndTheMiddleSensitivityWithSmallBoxesProveWhatIsQuiet) {
  const Setting judge{3, {}, 0U};
  const auto walks_by_only_in = [](const Setting& wanted) {
    return [wanted](const Setting& setting) {
      return setting == wanted ? moving_along(kWalk) : seen("#---------------");
    };
  };
  expect_spans(searched(walks_by_only_in({})).marks.quiet, {span(0, 2), span(6, 8)});
  expect_spans(searched(walks_by_only_in(judge)).marks.quiet, {span(0, 2), span(6, 8)});
  expect_spans(searched(walks_by_only_in({5, {}, {}})).marks.quiet, {span(0, 8)});
}

TEST(TuneSearch, TriesNothingMoreWhenTheStartHasNoBoxesInWhatIsQuiet) {
  const Outcome quiet = searched([](const Setting&) { return moving_along(kWalk); });
  EXPECT_EQ(quiet.trials.size(), 2U);
  EXPECT_EQ(quiet.chosen, 0U);
  const Outcome loud = searched(imagined);
  EXPECT_GT(loud.trials.size(), 15U);
}

TEST(TuneSearch, TriesNothingMoreWhenTheStartFindsAllOfMarkedMotion) {
  const auto trials = [](const std::string& looks) {
    Outcome outcome;
    outcome.marks = {.quiet = {span(0, 1)}, .motion = {span(1, 21)}};
    search(outcome, [&](const std::vector<Setting>& settings) {
      Seen all = seen("--" + looks);
      all.happenings = {motion(1, 20)};
      return std::vector<Seen>(settings.size(), all);
    });
    return outcome.trials.size();
  };
  EXPECT_EQ(trials(std::string(38, '#') + "--"), 2U) << "boxes in 38 of 40 frames";
  EXPECT_GT(trials(std::string(37, '#') + "---"), 15U);
}

TEST(TuneSearch, SearchesForMoreInMarkedMotion) {
  Outcome outcome;
  outcome.own = {.sensitivity = 4, .min_box = kMinBoxes[2]};
  outcome.marks.motion = {span(3, 5)};
  search(outcome, [](const std::vector<Setting>& settings) {
    std::vector<Seen> all;
    for (const Setting& setting : settings) {
      all.push_back(seen(setting.min_box == 1U ? "------####------" : "----------------"));
      if (setting.min_box == 1U) all.back().happenings = {motion(3, 4.5)};
    }
    return all;
  });
  EXPECT_EQ(outcome.trials[outcome.chosen].setting, (Setting{{}, {}, 1U}));
}

}  // namespace
