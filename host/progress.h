// The progress bar.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

namespace lm::host {

struct ProgressState {
  std::int64_t frames = 0;
  std::chrono::microseconds time{0};                  // of the video
  std::optional<std::chrono::microseconds> duration;  // when known
  double rate = 0;                                    // frames per second so far
};

// One line for a terminal of `width` columns: percentage, bar, time and frames per second, or what of that
// fits. Always at least one column shorter than the terminal, so that it never wraps.
std::string render_progress(int width, const ProgressState& state);

// Draws on standard error, ten times a second at most. Does nothing where that is no terminal.
class Progress {
 public:
  explicit Progress(bool wanted);
  ~Progress() { clear(); }
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  void update(const ProgressState& state);

  // Takes the bar off the terminal until the next update, to make room for other lines.
  void clear();

 private:
  bool on_;
  bool drawn_ = false;
  std::chrono::steady_clock::time_point last_{};
};

}  // namespace lm::host
