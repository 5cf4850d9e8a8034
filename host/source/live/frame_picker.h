// Selects the frames to analyse under a frame rate limit.
#pragma once

#include <chrono>

namespace lm::host::source::live {

class FramePicker {
 public:
  // `most`: frames per second of the source's time; 0: all.
  explicit FramePicker(double most);

  // To be called once per frame, in order of time.
  bool wants(std::chrono::microseconds time);

 private:
  std::chrono::microseconds interval_;
  std::chrono::microseconds due_{0};
};

}  // namespace lm::host::source::live
