#include "host/outputs/report/timeline.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "host/base/time_text.h"
#include "host/outputs/report/markup.h"
#include "host/outputs/report/output_names.h"
#include "host/outputs/report/percent.h"

namespace lm::host::outputs::report {
namespace {

using std::chrono::microseconds;
using namespace std::chrono_literals;

constexpr int kMostTicks = 9;

// Independent of the locale.
std::string number(double value) {
  std::array<char, 32> text{};
  const auto end =
      std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed, 2).ptr;
  return {text.data(), end};
}

double place(microseconds time, microseconds length) {
  return std::clamp(100.0 * double(time.count()) / double(length.count()), 0.0, 100.0);
}

// In a box of 100 by 100; shares relative to `highest`.
std::string curve(const Activity& activity, events::EventKind kind, microseconds length, double highest) {
  std::string points = "0,100 ";
  microseconds time{0};
  for (const double share : activity.shares(kind)) {
    const std::string height = number(100 - 100 * share / highest);
    points += number(place(time, length)) + "," + height + " ";
    time += activity.span();
    points += number(place(time, length)) + "," + height + " ";
  }
  points += number(place(time, length)) + ",100";
  return std::string("<polygon class=\"") + kind_name(kind) + "\" points=\"" + points + "\"/>";
}

std::string curves(const PageData& data) {
  double highest = 0.01;
  for (const events::EventKind kind : {events::EventKind::kMotion, events::EventKind::kLight}) {
    for (const double share : data.activity.shares(kind)) highest = std::max(highest, share);
  }
  return fill(R"(<span>Share of the frame</span>
<svg class="curve" viewBox="0 0 100 100" preserveAspectRatio="none" role="img" aria-label="{{text}}">{{{all}}}</svg>
)",
              {{"text", "Share of the frame under boxes over time, up to " + percent(highest)},
               {"all", curve(data.activity, events::EventKind::kLight, data.length, highest) +
                           curve(data.activity, events::EventKind::kMotion, data.length, highest)}});
}

constexpr std::size_t kMostRows = 6;

std::string mark(const events::Event& event, std::size_t index, std::size_t row, microseconds length) {
  const double from = place(event.start, length);
  const std::string times = base::clock_text(event.start) + " to " + base::clock_text(event.end);
  return fill(
      R"(<a href="#event-{{n}}" style="left:min({{from}}%,100% - 4px);width:{{width}}%;--row:{{row}}" title="{{times}}" aria-label="Event {{n}}, {{kind}}, {{times}}"></a>)",
      {{"n", std::to_string(index + 1)},
       {"from", number(from)},
       {"width", number(place(event.end, length) - from)},
       {"row", std::to_string(row)},
       {"kind", kind_name(event.kind)},
       {"times", times}});
}

// Events at the same time are in different rows, as far as there are rows.
std::string lane(const PageData& data, events::EventKind kind) {
  std::string marks;
  std::vector<microseconds> ends;  // of the last event in each row
  for (std::size_t i = 0; i < data.events.size(); ++i) {
    const events::Event& event = data.events[i].event;
    if (event.kind != kind) continue;
    const auto row = std::ranges::find_if(ends, [&](microseconds end) { return end < event.start; });
    std::size_t index = static_cast<std::size_t>(row - ends.begin());
    if (row == ends.end() && ends.size() == kMostRows) --index;
    if (index == ends.size()) ends.emplace_back();
    ends[index] = event.end;
    marks += mark(event, i, index, data.length);
  }
  return fill(
      "<span>{{title}}</span>\n<div class=\"lane {{kind}}\" style=\"--rows:{{rows}}\">{{{marks}}}</div>\n",
      {{"title", kind == events::EventKind::kLight ? "Light" : "Motion"},
       {"kind", kind_name(kind)},
       {"rows", std::to_string(std::max<std::size_t>(1, ends.size()))},
       {"marks", marks}});
}

std::string axis(microseconds length) {
  std::string ticks;
  for (const microseconds time : axis_times(length, kMostTicks)) {
    const double at = place(time, length);
    if (at > 93) continue;  // would overlap the label at the end
    ticks += "<span style=\"left:" + number(at) + "%\">" + base::clock_text(time) + "</span>";
  }
  ticks += "<span class=\"last\" style=\"left:100%\">" + base::clock_text(length) + "</span>";
  return "<span></span>\n<div class=\"axis\" aria-hidden=\"true\">" + ticks + "</div>\n";
}

}  // namespace

std::vector<microseconds> axis_times(microseconds length, int most) {
  constexpr microseconds kSteps[] = {1s,    2s,    5s,    10s, 15s, 30s, 1min, 2min, 5min,
                                     10min, 15min, 30min, 1h,  2h,  3h,  6h,   12h,  24h};
  microseconds step = kSteps[0];
  for (const microseconds wider : kSteps) {
    if (length / step < most) break;
    step = wider;
  }
  while (length / step >= most) step *= 2;
  std::vector<microseconds> times;
  for (microseconds time{0}; time <= length; time += step) times.push_back(time);
  return times;
}

std::string timeline(const PageData& data) {
  return "<div class=\"time\">\n<div class=\"lanes\">\n" + curves(data) +
         lane(data, events::EventKind::kMotion) + lane(data, events::EventKind::kLight) + axis(data.length) +
         "</div>\n<p class=\"hint\">Each bar is an event; select it to see its picture.</p>\n</div>\n";
}

}  // namespace lm::host::outputs::report
