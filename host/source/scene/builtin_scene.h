// The street scene that is analysed when no source is given.
#pragma once

#include <cstdint>
#include <vector>

#include "host/source/live/frame_picker.h"
#include "host/source/source.h"

namespace lm::host::source::scene {

// Twenty seconds of a street at dusk: two seconds of sensor noise only, then people walk by, a car drives in
// and parks, and a lamp is switched on. The same bytes on every machine.
class BuiltinScene : public Source {
 public:
  // `fps`: return at most this many frames per second; 0: all.
  explicit BuiltinScene(double fps = 0);

  const SourceInfo& info() const override { return info_; }
  bool next(Frame& frame) override;
  bool seek(std::chrono::microseconds time) override;

 private:
  void add_noise(cv::Mat& image) const;

  const double fps_;
  SourceInfo info_;
  cv::Mat street_;
  cv::Mat light_;
  std::vector<std::int8_t> noise_;
  live::FramePicker picker_;
  int number_ = 0;  // of the next frame
};

}  // namespace lm::host::source::scene
