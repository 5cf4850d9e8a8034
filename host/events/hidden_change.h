// Detects changes in parts of the picture that are not watched.
#pragma once

#include <opencv2/core.hpp>
#include <string>
#include <vector>

#include "host/detector/regions.h"

namespace lm::host::events {

// An unwatched area, and the number of pictures with changes in it.
struct HiddenPlace {
  std::string name;  // for messages
  cv::Mat mask;      // of the samples; empty if the area contains none
  int pictures = 0;
};

// Compares samples of each picture with those of the previous one.
class HiddenChange {
 public:
  explicit HiddenChange(const detector::Regions& regions);

  // `counts`: whether to count changes, or only to store the picture.
  void look(const cv::Mat& image, bool counts);

  const std::vector<HiddenPlace>& places() const { return places_; }

 private:
  std::vector<HiddenPlace> places_;
  cv::Mat last_;
};

}  // namespace lm::host::events
