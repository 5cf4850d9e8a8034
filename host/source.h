// Where frames come from: a file, a stream, a camera or the built-in scene.
#pragma once

#include <chrono>
#include <memory>
#include <opencv2/core.hpp>
#include <optional>
#include <string>

namespace lm::host {

struct Frame {
  cv::Mat image;                      // 8-bit blue, green, red; rows without padding
  std::chrono::microseconds time{0};  // since the first frame; each frame is later than the one before
};

struct SourceInfo {
  std::string name;                                   // for messages
  cv::Size size;                                      // of every frame
  cv::Size pixel_aspect{1, 1};                        // width : height of one pixel when shown
  double rate = 0;                                    // nominal frames per second; 0 when unknown
  std::optional<std::chrono::microseconds> duration;  // when known beforehand
  bool live = false;                                  // happens now: the wall clock is its clock
};

class Source {
 public:
  virtual ~Source() = default;

  virtual const SourceInfo& info() const = 0;

  // Moves the next frame into `frame`; false when there is none, or when the program was interrupted.
  virtual bool next(Frame& frame) = 0;

  // After the last frame: what was wrong with the source, in one line; empty when nothing was.
  virtual std::string trouble() const { return ""; }
};

// `name`: a path, an address with "://" or a camera "/dev/video..."; empty for the built-in scene.
// Throws Failure when no frame can be had from it.
std::unique_ptr<Source> open_source(const std::string& name);

// Cameras and network addresses are live; files are not.
bool is_live(const std::string& name);

}  // namespace lm::host
