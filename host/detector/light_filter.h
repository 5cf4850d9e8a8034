// Removes light from boxes: shadows, beams, and the ground in another light are no part of an object.
#pragma once

#include <chrono>
#include <functional>
#include <opencv2/core.hpp>
#include <vector>

#include "host/detector/ghosts.h"
#include "host/detector/ground.h"

namespace lm::host::detector {

class LightFilter {
 public:
  // The foreground in a part of a frame, CV_8U: 255 inside, else 0.
  using Foreground = std::function<cv::Mat(const cv::Rect& area)>;

  struct Result {
    // For each box what is left of it: itself, smaller ones, or nothing if it was only light.
    std::vector<std::vector<cv::Rect>> boxes;
    // Where the light has stayed, for lightmotion_relearn.
    std::vector<GhostPart> parts;
  };

  // Looks at a frame, 8 bits with three channels, and its boxes. `sigma`: its noise, in grey levels.
  // `foreground` is called for boxes that are examined.
  Result look(const cv::Mat& frame, std::chrono::microseconds time, const std::vector<cv::Rect>& boxes,
              double sigma, const Foreground& foreground);

  // The next frame does not follow the last one.
  void forget() { *this = {}; }

 private:
  struct Part;
  struct View;
  struct Object {
    cv::Rect box;
    std::chrono::microseconds seen;
    std::chrono::microseconds next;   // look at it
    std::chrono::microseconds light;  // last time that there was some
  };

  bool is_plain(const cv::Rect& box, std::chrono::microseconds time);
  bool was_object(const cv::Rect& box) const;
  std::vector<cv::Rect> examine(View& view, const cv::Rect& box, std::vector<GhostPart>& stays);
  std::vector<cv::Rect> without_light(Part& part, const cv::Rect& box) const;
  std::chrono::microseconds last_light(const cv::Rect& box) const;
  void add_objects(const std::vector<cv::Rect>& boxes, std::chrono::microseconds light,
                   std::chrono::microseconds time);
  void remember(const Part& part, View& view) const;
  static GhostPart stayed(const Part& part, cv::Mat& ages);

  Ground ground_;
  std::vector<Object> objects_;  // of the last frames
  cv::Mat ages_;                 // CV_32F, of the cells: seconds in which there was light
  std::chrono::microseconds last_{0};
};

}  // namespace lm::host::detector
