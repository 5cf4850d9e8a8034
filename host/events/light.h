// Separates boxes caused by lighting changes from boxes caused by motion.
//
// A lamp, a cloud or a camera's exposure control makes a large part of the picture brighter or darker at once
// and leaves its texture unchanged. A moving object replaces the texture. So two pictures half a second apart
// are compared in small cells: where most of the cells that became brighter kept their texture, the lighting
// has changed. The detector's boxes over that area are attributed to the lighting change for as long as the
// detector needs to adapt.
#pragma once

#include <array>
#include <bitset>
#include <chrono>
#include <deque>
#include <opencv2/core.hpp>
#include <optional>
#include <vector>

#include "host/detector/regions.h"
#include "host/events/event.h"

namespace lm::host::events {

class LightWatch {
 public:
  explicit LightWatch(const detector::Regions& regions);

  // Fills in the brightness, the lighting change and which boxes it caused.
  void look(const cv::Mat& image, Observation& seen);

  // The next picture is not comparable with the previous ones.
  void forget();

  static constexpr int kAcross = 16;
  static constexpr int kDown = 9;

 private:
  static constexpr std::size_t kCells = std::size_t{kAcross} * kDown;
  using Cells = std::bitset<kCells>;

  struct Look {
    std::chrono::microseconds time;
    cv::Mat samples;               // grey, several per cell
    std::array<int, kCells> sums;  // of the samples in each cell
    double brightness;
  };
  struct Comparison {
    double step = 0;        // of the mean
    bool textured = false;  // before or after
    bool alike = false;     // the same texture
  };
  static Look look_at(const cv::Mat& image, std::chrono::microseconds time);
  static Comparison compare(const Look& before, const Look& now, std::size_t cell);
  // The cells with the same texture in a different light, if there are enough of them.
  Cells changed_cells(const Look& before, const Look& now) const;
  void track_change(const Look& now);
  bool made_by_light(const cv::Rect2d& box) const;
  void judge(Observation& seen);
  void judge_examined(Observation& seen);

  Cells watched_;
  std::deque<Look> looks_;  // the last half second, oldest first
  Cells lit_;               // recent lighting changes
  std::chrono::microseconds lit_until_{0};
  std::optional<LightChange> change_;
  std::chrono::microseconds shown_until_{-1};  // boxes that are known to be light
};

}  // namespace lm::host::events
