// How far the run is.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

namespace lm::host::outputs {

struct ProgressState {
  std::int64_t frames = 0;
  std::chrono::microseconds time{0};                  // of the video
  std::optional<std::chrono::microseconds> duration;  // when known
  double rate = 0;                                    // frames per second so far
  std::int64_t events = 0;
};

// How long the rest takes at the speed so far; none where that cannot be told.
std::optional<std::chrono::microseconds> time_left(const ProgressState& state);

// One line for a terminal of `width` columns: percentage, bar, frames per second, time, time left and events,
// or what of that fits. Always at least one column shorter than the terminal, so that it never wraps.
std::string render_progress(int width, const ProgressState& state);

// The same for programs, as a JSON object on one line. `done`: no other comes after it.
std::string progress_line(const ProgressState& state, bool done);

enum class ProgressMode {
  kNone,
  kBar,    // ten times a second at most, and only where standard error is a terminal
  kLines,  // progress_line, once a second at most
};

// "bar", "json" or "none", as the command line has it; nothing for any other word.
std::optional<ProgressMode> progress_mode(const std::string& word);

// Tells about it on standard error.
class Progress {
 public:
  explicit Progress(ProgressMode mode);
  ~Progress() { clear(); }
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  void update(const ProgressState& state);

  // Takes the bar off the terminal until the next update, to make room for other lines.
  void clear();

  // Everything is complete.
  void done(const ProgressState& state);

 private:
  ProgressMode mode_;
  std::chrono::steady_clock::time_point next_{};
};

}  // namespace lm::host::outputs
