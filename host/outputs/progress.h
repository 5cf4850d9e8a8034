// Progress of a run.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

namespace lm::host::outputs {

struct ProgressState {
  std::int64_t frames = 0;
  std::chrono::microseconds time{0};                  // of the video
  std::optional<std::chrono::microseconds> duration;  // if known
  double rate = 0;                                    // frames per second so far
  std::int64_t events = 0;
};

// The remaining time at the average speed so far; none if unknown.
std::optional<std::chrono::microseconds> time_left(const ProgressState& state);

// One line for a terminal of `width` columns: percentage, bar, frames per second, time, time left and events,
// as far as they fit. Always at least one column shorter than the terminal, so that it never wraps.
std::string render_progress(int width, const ProgressState& state);

// The same as a JSON object on one line. `done`: this is the last line.
std::string progress_line(const ProgressState& state, bool done);

enum class ProgressMode {
  kNone,
  kBar,    // at most ten times per second, and only if standard error is a terminal
  kLines,  // progress_line, at most once per second
};

// "bar", "json" or "none", as on the command line; none for any other word.
std::optional<ProgressMode> progress_mode(const std::string& word);

// Reports progress on standard error.
class Progress {
 public:
  explicit Progress(ProgressMode mode);
  ~Progress() { clear(); }
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  void update(const ProgressState& state);

  // Clears the bar until the next update, so that other lines can be printed.
  void clear();

  // Everything is complete.
  void done(const ProgressState& state);

 private:
  ProgressMode mode_;
  std::chrono::steady_clock::time_point next_{};
};

}  // namespace lm::host::outputs
