// Which frames to analyse when not all of them.
#pragma once

#include <chrono>

namespace lm::host::source::live {

class FramePicker {
 public:
  // `most`: frames a second of the source's time; 0 for all.
  explicit FramePicker(double most);

  // Asked once for each frame, in the order of time.
  bool wants(std::chrono::microseconds time);

 private:
  std::chrono::microseconds interval_;
  std::chrono::microseconds due_{0};
};

}  // namespace lm::host::source::live
