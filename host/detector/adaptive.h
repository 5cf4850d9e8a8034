// A detector that adapts to its scene: it chooses the size in which frames are analysed, measures the noise
// of the picture and chooses sensitivity and peeling by it, smooths pictures of strong noise, takes back the
// places that something has left, and removes light and shadow from boxes.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <opencv2/core.hpp>
#include <string>

#include "host/detector/clutter.h"
#include "host/detector/detector.h"
#include "host/detector/ghosts.h"
#include "host/detector/light_filter.h"
#include "host/detector/noise.h"
#include "host/detector/regions.h"
#include "lightmotion/lightmotion.hpp"

namespace lm::host::detector {

class Adaptive : public Detector {
 public:
  // What the configuration sets is never changed. What it leaves out is that of the preset auto, or chosen:
  // sensitivity and peel. `analysed`: the size of the analysis. Throws Failure (kRefused) if the
  // configuration is refused.
  Adaptive(const Document& document, cv::Size analysed);

  // Called with one line when something else is chosen while it runs.
  void set_listener(std::function<void(const std::string&)> told) override { told_ = std::move(told); }

  void restart() override;

  // Frames of any size.
  Boxes process(const cv::Mat& image, std::int64_t milliseconds) override;

  // What is in force, such as "analysed in 640x480, noise 2.1, sensitivity 4, peel 1".
  std::string chosen() const override;

 private:
  lightmotion::Detector made(const Document& document) const;
  void measure(const cv::Mat& picture, std::chrono::microseconds time);
  void apply();
  cv::Mat foreground(const cv::Rect& area) const;
  bool smooths() const;
  int sensitivity() const;
  LearnedPictures learned(const cv::Rect& area) const;
  Boxes without_light(const cv::Mat& picture, std::chrono::microseconds time, const Boxes& boxes,
                      const std::vector<cv::Rect>& outlines);
  Box part_of(const Box& box, const cv::Rect& part) const;
  void relearn(const GhostPart& part);
  void take_back(const cv::Mat& picture, std::chrono::microseconds time, const std::vector<cv::Rect>& boxes);
  std::vector<std::string> names_of(const lightmotion_box& box) const;

  cv::Size analysed_;
  Regions regions_;
  bool chooses_sensitivity_, chooses_peel_;
  NoiseMeter noise_;
  NoiseRule rule_;
  ClutterRule clutter_;
  lightmotion::Detector detector_;
  Ghosts ghosts_;
  LightFilter light_;
  std::int64_t frames_ = 0;
  std::function<void(const std::string&)> told_;
};

}  // namespace lm::host::detector
