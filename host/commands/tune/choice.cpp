#include "host/commands/tune/choice.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace lm::host::commands::tune {
namespace {

using Places = std::vector<std::size_t>;

constexpr std::int64_t kSome = 5;  // frames; fewer are an accident

bool finds_as_much(const Figures& figures, const Figures& start, const Marks& marks) {
  if (marks.motion_assumed) return 100 * figures.kept >= 99 * start.kept;
  return figures.found >= start.found && 20 * figures.motion_frames >= 19 * start.motion_frames;
}

bool is_better(const Figures& figures, const Figures& start, const Marks& marks) {
  if (!marks.motion_assumed && start.found == 0 && figures.found > 0) return true;
  if (!finds_as_much(figures, start, marks)) return false;
  if (figures.quiet_frames != start.quiet_frames) {
    const std::int64_t fewer = start.quiet_frames - figures.quiet_frames;
    return marks.quiet_assumed ? fewer >= std::max(figures.quiet_frames, kSome) : fewer > 0;
  }
  return !marks.motion_assumed &&
         (figures.found > start.found || 19 * figures.motion_frames > 20 * start.motion_frames);
}

// Those with the largest value.
template <typename Value>
Places with_most(const Places& places, Value value) {
  const auto most = value(*std::ranges::max_element(places, {}, value));
  Places left;
  std::ranges::copy_if(places, std::back_inserter(left),
                       [&](std::size_t place) { return value(place) == most; });
  return left;
}

std::string frames_text(std::int64_t frames) {
  return std::to_string(frames) + (frames == 1 ? " frame" : " frames");
}

std::string percent(std::int64_t part, std::int64_t whole) {
  std::array<char, 16> text{};
  std::snprintf(text.data(), text.size(), "%.1f %%", 100.0 * double(part) / double(whole));
  return text.data();
}

std::string motion_text(const Figures& figures, const Figures& start, const Marks& marks) {
  if (!marks.motion_assumed) {
    return "It finds " + std::to_string(figures.found) + " of " + std::to_string(marks.motion.size()) +
           " motion spans, with boxes in " + std::to_string(figures.motion_frames) + " of their frames";
  }
  if (start.kept == 0) return "Nothing moves consistently in the sample";
  return "It keeps " + percent(figures.kept, start.kept) + " of the boxes around what moves";
}

std::string why_start(const Figures& start, const Marks& marks) {
  const bool marked = !marks.quiet_assumed || !marks.motion_assumed;
  std::string text = "The starting configuration is kept: ";
  if (marks.quiet.empty()) {
    text += "no part of the sample is known to be quiet, so no box can be counted as false.";
  } else if (start.quiet_frames == 0) {
    text += "it has no boxes in the quiet spans.";
  } else {
    text += "it has boxes in " + frames_text(start.quiet_frames) +
            " of the quiet spans, and no setting that finds as much has " +
            (marks.quiet_assumed ? "clearly fewer." : "fewer.");
  }
  if (!marks.motion_assumed) text += ' ' + motion_text(start, start, marks) + '.';
  if (!marked) text += " To choose by more than this, mark spans with --quiet and --motion.";
  return text;
}

}  // namespace

std::size_t choose(const std::vector<Candidate>& all, const Marks& marks) {
  const auto figures = [&](std::size_t place) -> const Figures& { return all[place].figures; };
  Places places;
  for (std::size_t place = 1; place < all.size(); ++place) {
    if (is_better(figures(place), figures(0), marks)) places.push_back(place);
  }
  if (places.empty()) return 0;
  places = with_most(places, [&](std::size_t place) { return -figures(place).quiet_frames; });
  places = with_most(places, [&](std::size_t place) { return figures(place).found; });
  if (!marks.motion_assumed) {
    const auto frames = [&](std::size_t place) { return figures(place).motion_frames; };
    const auto most = frames(*std::ranges::max_element(places, {}, frames));
    std::erase_if(places, [&](std::size_t place) { return 20 * frames(place) < 19 * most; });
  }
  return *std::ranges::min_element(places, {}, [&](std::size_t place) { return all[place].distance; });
}

std::string why(const std::vector<Candidate>& all, std::size_t chosen, const Marks& marks, bool adapts) {
  const Figures& start = all[0].figures;
  if (chosen == 0) return why_start(start, marks);
  const Figures& figures = all[chosen].figures;
  std::string text;
  if (!marks.quiet.empty()) {
    text = "It has boxes in " + frames_text(figures.quiet_frames) + " of the quiet spans, the start in " +
           std::to_string(start.quiet_frames) + ". ";
  }
  text += motion_text(figures, start, marks);
  if (!marks.motion_assumed) {
    text +=
        "; the start finds " + std::to_string(start.found) + ", in " + std::to_string(start.motion_frames);
  }
  text += ". Of the settings with equal results, it is the nearest to the start.";
  if (adapts && all[chosen].setting.sensitivity) text += " The sensitivity no longer follows the noise.";
  return text;
}

}  // namespace lm::host::commands::tune
