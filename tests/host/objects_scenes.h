// Objects that move by rule, and the boxes that motion detection would have around them.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <opencv2/core.hpp>
#include <optional>
#include <string>
#include <vector>

#include "tests/host/objects_identity.h"

namespace scenes {

// Where an object is after so many seconds; none when it is not in the scene.
using Motion = std::function<std::optional<cv::Rect2d>(double seconds)>;

// A constant velocity, per second, from `from` until `to` seconds.
Motion walk(const cv::Rect2d& start, cv::Point2d velocity, double from, double to);

struct Scene {
  std::string name;
  double seconds = 0;
  std::vector<Motion> objects;
  double jitter = 0.03;  // of each edge, standard deviation in sides of the box
  double missed = 0;     // share of the boxes that are missing, at random
  double merge = 0.01;   // boxes closer than this become one
  // Whether the object has a box at this time; all have without it.
  std::function<bool(std::size_t object, double seconds)> moves{};
  // The parts that the object's box falls into; one without it.
  std::function<std::vector<cv::Rect2d>(const cv::Rect2d& box, double seconds)> parts{};
};

struct Played {
  std::vector<std::chrono::microseconds> times;
  identity::Frames truth;  // only of objects that have a box
  std::vector<std::vector<cv::Rect2d>> boxes;
};

// Boxes within the frame. The same `seed` gives the same boxes everywhere.
Played play(const Scene& scene, double rate, std::uint32_t seed);

// The scenes of the tests.
const std::vector<Scene>& all();

}  // namespace scenes
