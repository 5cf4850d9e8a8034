#include "host/source/live/frame_picker.h"

#include <cmath>

namespace lm::host::source::live {

using namespace std::chrono_literals;

FramePicker::FramePicker(double most) : interval_(most > 0 ? std::llround(1e6 / most) : 0) {}

// Frames are picked on a fixed grid, so that uneven times do not reduce their number. Times are rounded, so a
// frame may be slightly before its grid point.
bool FramePicker::wants(std::chrono::microseconds time) {
  if (interval_ == 0us) return true;
  const auto early = due_ - time;
  if (early > 1ms) return false;
  due_ += early > 0us ? interval_ : interval_ * (1 - early / interval_);
  return true;
}

}  // namespace lm::host::source::live
