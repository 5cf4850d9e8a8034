#include "host/commands/tune/choice.h"

#include <algorithm>
#include <cstdlib>
#include <numeric>
#include <tuple>

namespace lm::host::commands::tune {
namespace {

using Places = std::vector<std::size_t>;

constexpr int kPreferredAdaptation = 3;

// The members of `places` that pass `test`; all of them if none does.
template <typename Test>
Places kept(const Places& places, Test test) {
  Places left;
  std::ranges::copy_if(places, std::back_inserter(left), test);
  return left.empty() ? places : left;
}

template <typename Value>
auto most(const Places& places, Value value) {
  return value(*std::ranges::max_element(places, {}, value));
}

// Larger is better.
auto modesty(const Setting& setting, bool modest) {
  const int sign = modest ? 1 : -1;
  return std::tuple(-sign * setting.sensitivity, sign * static_cast<int>(setting.min_box),
                    -std::abs(setting.adaptation - kPreferredAdaptation), -setting.adaptation);
}

std::string frames_text(std::int64_t frames) {
  return std::to_string(frames) + (frames == 1 ? " frame" : " frames");
}

std::string quiet_text(const Figures& figures, const Marks& marks) {
  if (marks.quiet.empty()) return "No quiet span is known, so false boxes cannot be counted.";
  if (figures.quiet_frames == 0) return "It has no boxes in the quiet spans.";
  return "Every setting that finds motion has boxes in the quiet spans; this one has the fewest, in " +
         frames_text(figures.quiet_frames) + ".";
}

std::string motion_text(const Figures& figures, const Marks& marks) {
  const std::string spans =
      std::to_string(figures.found) + " of " + std::to_string(marks.motion.size()) + " motion spans";
  if (marks.motion.empty()) {
    return "No motion span is known, so it is the most sensitive setting with this result.";
  }
  if (figures.found == 0) return "None of the settings finds motion in the motion spans.";
  return "It finds " + spans + ", with boxes in " + std::to_string(figures.motion_frames) +
         " of their frames.";
}

// An alternative: more spans found, at the cost of boxes in quiet spans.
std::string alternative_text(const std::vector<Candidate>& all, const Figures& chosen) {
  const Candidate* better = nullptr;
  for (const Candidate& other : all) {
    if (other.figures.found <= chosen.found) continue;
    if (better == nullptr || std::tuple(other.figures.found, -other.figures.quiet_frames) >
                                 std::tuple(better->figures.found, -better->figures.quiet_frames)) {
      better = &other;
    }
  }
  if (better == nullptr) return "";
  return " Sensitivity " + std::to_string(better->setting.sensitivity) + " would find " +
         std::to_string(better->figures.found) + ", but has boxes in " +
         frames_text(better->figures.quiet_frames) + " of the quiet spans.";
}

}  // namespace

std::size_t choose(const std::vector<Candidate>& all, const Marks& marks) {
  const auto figures = [&](std::size_t place) -> const Figures& { return all[place].figures; };
  const auto quiet = [&](std::size_t place) { return -figures(place).quiet_frames; };
  const auto found = [&](std::size_t place) { return figures(place).found; };
  const auto frames = [&](std::size_t place) { return figures(place).motion_frames; };
  Places places(all.size());
  std::iota(places.begin(), places.end(), std::size_t{0});
  places = kept(places, [&](std::size_t place) { return found(place) > 0; });
  const auto quietest = most(places, quiet);
  places = kept(places, [&](std::size_t place) { return quiet(place) == quietest; });
  const auto most_found = most(places, found);
  places = kept(places, [&](std::size_t place) { return found(place) == most_found; });
  const auto most_frames = most(places, frames);
  places = kept(places, [&](std::size_t place) { return 20 * frames(place) >= 19 * most_frames; });
  return *std::ranges::max_element(
      places, {}, [&](std::size_t place) { return modesty(all[place].setting, !marks.motion.empty()); });
}

std::string why(const std::vector<Candidate>& all, std::size_t chosen, const Marks& marks) {
  if (marks.quiet.empty() && marks.motion.empty()) {
    return "The settings agree on neither a quiet nor a motion span, so there is nothing to choose by; mark "
           "spans with --quiet and --motion.";
  }
  const Figures& figures = all[chosen].figures;
  std::string text = quiet_text(figures, marks);
  text += ' ' + motion_text(figures, marks) + alternative_text(all, figures);
  if (figures.found > 0) {
    text +=
        " Of the settings with equal results, it is the least sensitive with the largest minimum box size.";
  }
  return text;
}

}  // namespace lm::host::commands::tune
