#include "host/commands/tune/search.h"

#include <algorithm>
#include <tuple>

#include "host/commands/tune/assumption.h"

namespace lm::host::commands::tune {
namespace {

void add(Outcome& outcome, std::vector<Setting> settings, const TryAll& try_all) {
  std::erase_if(settings, [&](const Setting& setting) {
    return std::ranges::find(outcome.trials, setting, &Trial::setting) != outcome.trials.end();
  });
  std::vector<Seen> seen = try_all(settings);
  for (std::size_t i = 0; i < settings.size(); ++i) {
    outcome.trials.push_back({settings[i], std::move(seen[i])});
  }
}

// Only settings that detect small objects decide which seconds are quiet: a second in which only they find
// something is not quiet. Noise, in contrast, disappears with less sensitivity.
std::vector<Seen> judges_of(const Outcome& outcome) {
  std::vector<Seen> judges;
  for (const Trial& trial : outcome.trials) {
    if (trial.setting.min_box == 0) judges.push_back(trial.seen);
  }
  return judges;
}

Setting judge(Outcome& outcome) {
  std::vector<Candidate> candidates;
  for (Trial& trial : outcome.trials) {
    trial.figures = figures_of(trial.seen, outcome.marks);
    candidates.push_back({trial.setting, trial.figures});
  }
  outcome.chosen = choose(candidates, outcome.marks);
  outcome.why = why(candidates, outcome.chosen, outcome.marks);
  return outcome.trials[outcome.chosen].setting;
}

std::int64_t frames_in(const Spans& spans, const std::vector<Look>& looks) {
  return std::ranges::count_if(looks, [&](const Look& look) { return contains(spans, look.time); });
}

}  // namespace

void search(Outcome& outcome, const TryAll& try_all) {
  add(outcome, coarse_grid(), try_all);
  outcome.marks = with_assumptions(outcome.marks, judges_of(outcome));
  outcome.quiet_frames = frames_in(outcome.marks.quiet, outcome.trials.front().seen.looks);
  outcome.motion_frames = frames_in(outcome.marks.motion, outcome.trials.front().seen.looks);
  Setting before;
  Setting best = judge(outcome);
  do {
    before = best;
    add(outcome, neighbours(best), try_all);
    best = judge(outcome);
  } while (best != before);
  add(outcome, other_adaptations(best), try_all);
  std::ranges::sort(outcome.trials, {}, [](const Trial& trial) {
    return std::tuple(trial.setting.sensitivity, trial.setting.min_box, trial.setting.adaptation);
  });
  judge(outcome);
}

std::size_t usual_trials() {
  const Setting middle{.sensitivity = 3, .min_box = kMinBoxes.size() / 2};
  return coarse_grid().size() + neighbours(middle).size() + other_adaptations(middle).size();
}

}  // namespace lm::host::commands::tune
