#include "host/outputs/progress.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "host/base/json_text.h"
#include "host/base/notice.h"
#include "host/base/time_text.h"

namespace lm::host::outputs {
namespace {

using namespace std::chrono_literals;

constexpr std::size_t kShortestBar = 12;  // including its brackets
constexpr std::size_t kLongestBar = 62;
constexpr auto kLongestPromise = 24h * 365;  // damaged containers state arbitrary lengths

// Queried every time, because the window may be resized.
int terminal_width() {
  winsize size{};
  if (ioctl(STDERR_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_col == 0) return 80;
  return size.ws_col;
}

bool can_redraw_lines() {
  const char* terminal = std::getenv("TERM");
  return isatty(STDERR_FILENO) != 0 && terminal != nullptr && std::string_view(terminal) != "dumb";
}

std::string bar(std::size_t length, double fraction) {
  const std::size_t inside = length - 2;
  const auto done = static_cast<std::size_t>(std::floor(fraction * static_cast<double>(inside)));
  return std::string("[").append(done, '#').append(inside - done, '-').append("]");
}

double fraction_of(const ProgressState& state) {
  const double done = static_cast<double>(state.time.count()) / static_cast<double>(state.duration->count());
  return std::clamp(done, 0.0, 1.0);
}

bool is_measurable(const ProgressState& state) { return state.duration && state.duration->count() > 0; }

std::string events_text(std::int64_t events) {
  return std::to_string(events) + (events == 1 ? " event" : " events");
}

}  // namespace

std::optional<std::chrono::microseconds> time_left(const ProgressState& state) {
  const double fraction = is_measurable(state) ? fraction_of(state) : 0;
  if (fraction <= 0 || !(state.rate > 0)) return std::nullopt;
  const double worked = static_cast<double>(state.frames) / state.rate;
  const std::chrono::duration<double> left(worked * (1 - fraction) / fraction);
  if (left > kLongestPromise) return std::nullopt;
  return std::chrono::round<std::chrono::microseconds>(left);
}

std::string render_progress(int width, const ProgressState& state) {
  const auto columns = static_cast<std::size_t>(std::max(0, width - 1));
  const bool measurable = is_measurable(state);
  const double fraction = measurable ? fraction_of(state) : 0;
  std::string lead = measurable ? std::to_string(static_cast<int>(std::floor(fraction * 100))) + "%"
                                : std::to_string(state.frames) + " frames";
  if (lead.size() > columns) return "";
  const std::optional<std::chrono::microseconds> left = time_left(state);
  const std::string parts[] = {
      "  " + std::to_string(std::llround(state.rate)) + " fps",
      "  " + base::clock_text(state.time) + (measurable ? " of " + base::clock_text(*state.duration) : ""),
      left ? "  " + base::clock_text(*left) + " left" : "",
      "  " + events_text(state.events),
  };
  std::string rest;
  for (const std::string& part : parts) {
    if (lead.size() + rest.size() + part.size() <= columns) rest += part;
  }
  const std::size_t room = columns - lead.size() - rest.size();
  if (measurable && room > kShortestBar)
    lead.append(" ").append(bar(std::min(room - 1, kLongestBar), fraction));
  return lead + rest;
}

std::string progress_line(const ProgressState& state, bool done) {
  Json::Value line;
  line["frames"] = Json::Int64(state.frames);
  line["length"] = base::seconds_number(state.time);
  if (state.duration) line["duration"] = base::seconds_number(*state.duration);
  if (const auto left = done ? std::nullopt : time_left(state)) line["eta"] = base::seconds_number(*left);
  line["fps"] = state.rate;
  line["event_count"] = Json::Int64(state.events);
  if (done) line["done"] = true;
  return base::json_text(line);
}

std::optional<ProgressMode> progress_mode(const std::string& word) {
  if (word == "bar") return ProgressMode::kBar;
  if (word == "json") return ProgressMode::kLines;
  if (word == "none") return ProgressMode::kNone;
  return std::nullopt;
}

Progress::Progress(ProgressMode mode) : mode_(mode) {
  if (mode_ == ProgressMode::kBar && !can_redraw_lines()) mode_ = ProgressMode::kNone;
}

void Progress::update(const ProgressState& state) {
  if (mode_ == ProgressMode::kNone) return;
  const auto now = std::chrono::steady_clock::now();
  if (now < next_) return;
  if (mode_ == ProgressMode::kBar) {
    next_ = now + 100ms;
    base::draw_bar(render_progress(terminal_width(), state));
  } else {
    next_ = now + 1s;
    std::fprintf(stderr, "%s\n", progress_line(state, false).c_str());
  }
}

void Progress::clear() { base::clear_bar(); }

void Progress::done(const ProgressState& state) {
  clear();
  if (mode_ == ProgressMode::kLines) std::fprintf(stderr, "%s\n", progress_line(state, true).c_str());
}

}  // namespace lm::host::outputs
