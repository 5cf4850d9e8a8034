// Input frames, made while the benchmark runs: the same bytes on every machine.
#pragma once

#include <functional>
#include <opencv2/core.hpp>
#include <string>
#include <vector>

#include "bench/random.h"

namespace lm::bench {

// What a scene shows, before noise.
struct Script {
  // The next picture, valid until the next call; null at the end. The first one shows no motion.
  std::function<const cv::Mat*()> next;
  double noise = 1.5;          // Gaussian; standard deviation in grey levels
  int cycle = 1;               // frames that belong together: their mean is one measurement
  bool ends = false;           // otherwise it continues without end
  bool partly_moving = false;  // an empty or full mask is wrong
};

class Scene {
 public:
  Scene(std::string name, cv::Size size, Script script);

  const std::string& name() const { return name_; }
  cv::Size size() const { return size_; }
  int cycle() const { return script_.cycle; }
  bool ends() const { return script_.ends; }
  bool partly_moving() const { return script_.partly_moving; }

  // The next frame, with noise; valid until the next call. Null at the end.
  const cv::Mat* next();

 private:
  std::string name_;
  cv::Size size_;
  Script script_;
  cv::Mat noise_;  // signed, one row; each frame takes a random part of it
  Random offsets_{1};
  cv::Mat frame_;
};

// In the order of the tables.
std::vector<std::string> scene_names();
// Throws std::invalid_argument for a name that is not among them.
Scene make_scene(const std::string& name, cv::Size size);
// The origin of the street's frames, as text.
std::string street_origin();

Script street(cv::Size size);  // street.cpp

// The timestamp of a frame at 25 frames per second.
inline std::string time_of(int number) { return std::to_string(1000 + 40 * number); }

}  // namespace lm::bench
