// A plug-in by its four entry points as a detector.
#pragma once

#include <string>

#include "host/detector/detector.h"
#include "host/detector/document.h"
#include "host/detector/plugin.h"
#include "host/detector/regions.h"

namespace lm::host::detector {

// Only one in a process at a time.
class PluginDetector : public Detector {
 public:
  // `frame`: empty if any size will do.
  PluginDetector(const std::string& path, const Document& document, cv::Size frame);

  void restart() override;
  Boxes process(const cv::Mat& image, std::int64_t milliseconds) override;

 private:
  std::string document_;  // as the plug-in reads it
  Regions regions_;
  Plugin plugin_;
};

// The boxes of the plug-in's result document, in its order and clipped to the frame, without regions: the
// plug-in's own extend beyond the right and bottom border. Empty for an empty text and for one without boxes.
// Skips entries that are not objects with four numbers, and boxes outside the frame.
Boxes boxes_of(const std::string& result);

}  // namespace lm::host::detector
