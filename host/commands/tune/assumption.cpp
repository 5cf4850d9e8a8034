#include "host/commands/tune/assumption.h"

#include <algorithm>

namespace lm::host::commands::tune {
namespace {

using std::chrono::microseconds;

constexpr microseconds kSecond(1'000'000);

struct Second {
  events::TimeSpan span;
  int with_boxes = 0;  // number of settings
  bool by_light = false;
};

std::vector<Second> seconds_of(const std::vector<Seen>& all) {
  std::vector<Second> seconds;
  for (const Seen& seen : all) {
    std::vector<bool> boxes;
    for (const Look& look : seen.looks) {
      const auto at = static_cast<std::size_t>(look.time / kSecond.count());
      for (std::size_t i = seconds.size(); i <= at; ++i) {
        seconds.push_back({.span = {i * kSecond, (i + 1) * kSecond}});
      }
      boxes.resize(std::max(boxes.size(), at + 1));
      if (look.boxes > 0) boxes[at] = true;
      if (look.by_light > 0) seconds[at].by_light = true;
    }
    for (std::size_t i = 0; i < boxes.size(); ++i) seconds[i].with_boxes += boxes[i] ? 1 : 0;
  }
  return seconds;
}

bool overlaps(const Spans& spans, const events::TimeSpan& other) {
  return std::ranges::any_of(
      spans, [&](const events::TimeSpan& span) { return span.from < other.to && other.from < span.to; });
}

// Joins consecutive seconds into one span.
void add(Spans& spans, const events::TimeSpan& second) {
  if (!spans.empty() && spans.back().to == second.from) {
    spans.back().to = second.to;
  } else {
    spans.push_back(second);
  }
}

}  // namespace

Marks with_assumptions(Marks marked, const std::vector<Seen>& all) {
  Marks marks = marked;
  marks.quiet_assumed = marked.quiet.empty();
  marks.motion_assumed = marked.motion.empty();
  std::vector<Second> seconds = seconds_of(all);
  std::erase_if(seconds, [&](const Second& second) {
    return second.by_light || overlaps(marked.quiet, second.span) || overlaps(marked.motion, second.span);
  });
  if (seconds.empty()) return marks;
  const auto [least, most] = std::ranges::minmax(seconds, {}, &Second::with_boxes);
  const int settings = static_cast<int>(all.size());
  const int spread = most.with_boxes - least.with_boxes;
  const bool one_kind = 3 * spread < settings;
  for (const Second& second : seconds) {
    const bool mostly = 2 * second.with_boxes >= settings;
    const bool busy = one_kind ? mostly : 4 * (most.with_boxes - second.with_boxes) <= spread;
    const bool calm = one_kind ? !mostly : 4 * (second.with_boxes - least.with_boxes) <= spread;
    if (busy && marks.motion_assumed) add(marks.motion, second.span);
    if (calm && marks.quiet_assumed) add(marks.quiet, second.span);
  }
  return marks;
}

}  // namespace lm::host::commands::tune
