// Changes of the picture where the plug-in does not look.
#pragma once

#include <opencv2/core.hpp>
#include <string>
#include <vector>

#include "host/events/regions.h"

namespace lm::host::events {

// A place that is not watched, and in how many pictures something changed there.
struct HiddenPlace {
  std::string name;  // for messages
  cv::Mat mask;      // of the samples; empty when the place has none
  int pictures = 0;
};

// Compares each picture with the one before, in samples.
class HiddenChange {
 public:
  explicit HiddenChange(const Regions& regions);

  // `counts`: whether to count, or to remember the picture only.
  void look(const cv::Mat& image, bool counts);

  const std::vector<HiddenPlace>& places() const { return places_; }

 private:
  std::vector<HiddenPlace> places_;
  cv::Mat last_;
};

}  // namespace lm::host::events
