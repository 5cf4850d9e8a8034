// Input frames, generated in advance: the same bytes on every machine.
#pragma once

#include <opencv2/core.hpp>
#include <string>
#include <vector>

namespace lm::bench {

struct Scene {
  std::string name;
  cv::Mat opening;             // the first frame, without motion
  std::vector<cv::Mat> ring;   // the following frames, repeated
  int cycle = 1;               // frames that belong together: their mean is one measurement
  bool partly_moving = false;  // an empty or full mask is wrong

  const cv::Mat& at(int number) const {
    return number == 0 ? opening : ring[static_cast<std::size_t>(number - 1) % ring.size()];
  }
};

// In the order of the table.
std::vector<std::string> scene_names();
// Throws std::invalid_argument for a name that is not among them.
Scene make_scene(const std::string& name, cv::Size size);
// The origin of the street's frames, as text.
std::string street_origin();

Scene make_street(cv::Size size);  // street.cpp

// The timestamp of a frame at 25 frames per second.
inline std::string time_of(int number) { return std::to_string(1000 + 40 * number); }

}  // namespace lm::bench
