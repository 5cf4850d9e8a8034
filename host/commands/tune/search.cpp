#include "host/commands/tune/search.h"

#include <algorithm>
#include <optional>
#include <tuple>

#include "host/commands/tune/proof.h"

namespace lm::host::commands::tune {
namespace {

void add(Outcome& outcome, const std::vector<Setting>& wanted, const TryAll& try_all) {
  std::vector<Setting> settings;
  for (const Setting& setting : wanted) {
    const bool tried = std::ranges::find(outcome.trials, setting, &Trial::setting) != outcome.trials.end();
    if (!tried && std::ranges::find(settings, setting) == settings.end()) settings.push_back(setting);
  }
  std::vector<Seen> seen = try_all(settings);
  for (std::size_t i = 0; i < settings.size(); ++i) {
    outcome.trials.push_back({settings[i], std::move(seen[i])});
  }
}

// Beside the start, this one proves what is quiet: it finds small things, but does not follow noise.
Setting judging(const Own& own) {
  return reduced({.sensitivity = kMiddle, .adaptation = {}, .min_box = 0}, own);
}

Setting judge(Outcome& outcome) {
  std::vector<Candidate> candidates;
  for (Trial& trial : outcome.trials) {
    trial.figures = figures_of(trial.seen, outcome.marks, outcome.moving);
    candidates.push_back({trial.setting, trial.figures, distance(trial.setting, outcome.own)});
  }
  outcome.chosen = choose(candidates, outcome.marks);
  outcome.why = why(candidates, outcome.chosen, outcome.marks, outcome.own.chosen);
  return outcome.trials[outcome.chosen].setting;
}

// Whether there can be fewer boxes in quiet spans, or more in marked motion (choose).
bool can_be_better(const Outcome& outcome, const Setting& best) {
  const Figures& figures = std::ranges::find(outcome.trials, best, &Trial::setting)->figures;
  if (figures.quiet_frames > 0) return true;
  return !outcome.marks.motion_assumed && (figures.found < outcome.marks.motion.size() ||
                                           19 * outcome.motion_frames > 20 * figures.motion_frames);
}

std::int64_t frames_in(const Spans& spans, const std::vector<Look>& looks) {
  return std::ranges::count_if(looks, [&](const Look& look) { return contains(spans, look.time); });
}

}  // namespace

void search(Outcome& outcome, const TryAll& try_all) {
  const Setting start;
  add(outcome, {start, judging(outcome.own)}, try_all);
  std::vector<const Seen*> judges;
  for (const Trial& trial : outcome.trials) judges.push_back(&trial.seen);
  outcome.marks = with_proofs(outcome.marks, judges);
  outcome.moving = moving_boxes(*judges.front(), outcome.marks.motion);
  outcome.quiet_frames = frames_in(outcome.marks.quiet, judges.front()->looks);
  outcome.motion_frames = frames_in(outcome.marks.motion, judges.front()->looks);
  judge(outcome);
  Setting best = start;
  for (std::optional<Setting> before; best != before && can_be_better(outcome, best); best = judge(outcome)) {
    before = best;
    add(outcome, variations(best, outcome.own), try_all);
  }
  std::ranges::sort(outcome.trials.begin() + 1, outcome.trials.end(), {}, [](const Trial& trial) {
    return std::tuple(trial.setting.sensitivity, trial.setting.adaptation, trial.setting.min_box);
  });
  judge(outcome);
}

std::size_t usual_trials(const Own& own) { return 1 + variations({}, own).size(); }

}  // namespace lm::host::commands::tune
