// A motion detector: by handle, of the library that the program is linked with, or a plug-in by its four
// entry points.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <opencv2/core.hpp>
#include <string>

#include "host/detector/box.h"
#include "host/detector/document.h"

namespace lm::host::detector {

class Detector {
 public:
  virtual ~Detector() = default;

  // Forgets everything learned: the next frame is a first one. Throws Failure, as does `process`.
  virtual void restart() = 0;

  // Processes one frame: 8-bit blue, green, red, of the size that it was made for; rows may have padding.
  // `milliseconds`: later than the frame before. Boxes have the regions that they touch: by handle those in
  // which some foreground pixel of the box lies, of a plug-in those whose outline overlaps the box.
  virtual Boxes process(const cv::Mat& image, std::int64_t milliseconds) = 0;

  // What it has chosen itself, such as "analysed in 640x480, noise 2.1, sensitivity 4"; empty if it does not
  // adapt.
  virtual std::string chosen() const { return ""; }
  // Called with that line whenever something else is chosen.
  virtual void set_listener(std::function<void(const std::string&)> /*told*/) {}
};

// Makes a detector for frames of this size, that of analysed_size (adapt.h); it adapts if the document says
// so. `plugin`: the path of a plug-in, of which a process can run one at a time; empty: by handle, any
// number. Throws Failure: kRefused if the configuration is refused or the plug-in cannot be used.
std::unique_ptr<Detector> make_detector(const std::string& plugin, const Document& document, cv::Size frame);

}  // namespace lm::host::detector
