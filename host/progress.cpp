#include "host/progress.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "host/time_text.h"

namespace lm::host {
namespace {

using namespace std::chrono_literals;

constexpr std::size_t kShortestBar = 12;  // with its brackets
constexpr std::size_t kLongestBar = 62;

// Asked every time, because the user may resize the window.
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

}  // namespace

std::string render_progress(int width, const ProgressState& state) {
  const auto columns = static_cast<std::size_t>(std::max(0, width - 1));
  const bool measurable = state.duration && state.duration->count() > 0;
  const double fraction =
      measurable
          ? std::clamp(static_cast<double>(state.time.count()) / static_cast<double>(state.duration->count()),
                       0.0, 1.0)
          : 0.0;
  std::string lead = measurable ? std::to_string(static_cast<int>(std::floor(fraction * 100))) + "%"
                                : std::to_string(state.frames) + " frames";
  if (lead.size() > columns) return "";
  const std::string rate = "  " + std::to_string(std::llround(state.rate)) + " fps";
  const std::string clock =
      "  " + clock_text(state.time) + (measurable ? " of " + clock_text(*state.duration) : "");
  std::string rest;
  for (const std::string& part : {rate, clock}) {
    if (lead.size() + rest.size() + part.size() <= columns) rest += part;
  }
  const std::size_t room = columns - lead.size() - rest.size();
  if (measurable && room > kShortestBar)
    lead.append(" ").append(bar(std::min(room - 1, kLongestBar), fraction));
  return lead + rest;
}

Progress::Progress(bool wanted) : on_(wanted && can_redraw_lines()) {}

void Progress::update(const ProgressState& state) {
  if (!on_) return;
  const auto now = std::chrono::steady_clock::now();
  if (now - last_ < 100ms) return;
  last_ = now;
  std::fprintf(stderr, "\r%s\x1b[K", render_progress(terminal_width(), state).c_str());
  std::fflush(stderr);
  drawn_ = true;
}

void Progress::clear() {
  if (!drawn_) return;
  std::fputs("\r\x1b[K", stderr);
  std::fflush(stderr);
  drawn_ = false;
}

}  // namespace lm::host
