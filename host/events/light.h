// Tells boxes that a change of light made from those of things that move.
//
// A lamp, a cloud or a camera's exposure makes a large part of the picture brighter, or darker, at once,
// while what is seen there stays the same: the picture's texture remains. What moves covers what was there.
// So two pictures half a second apart are compared in small cells, and where most of the cells that became
// brighter kept their texture, the light has changed there. The plug-in's boxes over that place, for as long
// as it takes the plug-in to get used to the new light, are the light's.
#pragma once

#include <bitset>
#include <chrono>
#include <deque>
#include <opencv2/core.hpp>
#include <optional>
#include <vector>

#include "host/events/event.h"
#include "host/events/regions.h"

namespace lm::host::events {

class LightWatch {
 public:
  explicit LightWatch(const Regions& regions);

  // Fills in the brightness, which boxes are the light's, and how it changed.
  void look(const cv::Mat& image, Observation& seen);

  // The next picture has nothing to do with the ones before.
  void forget();

  static constexpr int kAcross = 16;
  static constexpr int kDown = 9;

 private:
  static constexpr std::size_t kCells = std::size_t{kAcross} * kDown;
  using Cells = std::bitset<kCells>;

  struct Look {
    std::chrono::microseconds time;
    cv::Mat samples;  // grey, some in each cell
    double brightness;
  };
  // The cells with the same samples in another light, when they are many.
  Cells relit(const Look& before, const Look& now) const;
  void begin_or_go_on(const Look& now);
  bool made_by_light(const cv::Rect2d& box) const;
  void judge(Observation& seen);

  Cells watched_;
  std::deque<Look> looks_;  // the last half second, the oldest first
  Cells lit_;               // where the light changed lately
  std::chrono::microseconds lit_until_{0};
  std::optional<LightChange> change_;
};

}  // namespace lm::host::events
