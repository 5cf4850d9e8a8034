#include "host/detector/detector.h"

#include <algorithm>

#include "host/base/failure.h"
#include "host/detector/adapt.h"
#include "host/detector/adaptive.h"
#include "host/detector/plugin_detector.h"
#include "lightmotion/lightmotion.hpp"

namespace lm::host::detector {
namespace {

class ByHandle : public Detector {
 public:
  ByHandle(const std::string& document, cv::Size frame)
      : detector_(document, frame.width, frame.height, LIGHTMOTION_FORMAT_BGR) {}

  void restart() override { detector_.reset(); }

  Boxes process(const cv::Mat& image, std::int64_t milliseconds) override {
    Boxes boxes;
    for (const lightmotion_box& found : detector_.process(image.data, image.step, milliseconds)) {
      const cv::Rect2d area(found.rel_x, found.rel_y, found.rel_width, found.rel_height);
      boxes.push_back({.area = clipped(area), .regions = names_of(found)});
    }
    return boxes;
  }

 private:
  std::vector<std::string> names_of(const lightmotion_box& box) const {
    std::vector<std::string> names;
    for (std::int32_t i = 0; i < box.region_count; ++i) {
      const std::string_view name = detector_.region_name(box.regions[i]);
      if (std::ranges::find(names, name) == names.end()) names.emplace_back(name);
    }
    return names;
  }

  lightmotion::Detector detector_;
};

}  // namespace

std::unique_ptr<Detector> make_detector(const std::string& plugin, const Document& document, cv::Size frame) {
  if (!plugin.empty()) return std::make_unique<PluginDetector>(plugin, document, frame);
  if (adapts(document.text)) return std::make_unique<Adaptive>(document, frame);
  try {
    return std::make_unique<ByHandle>(document.text, frame);
  } catch (const lightmotion::Error& error) {
    throw base::Failure(base::kRefused, about(document, error.what()));
  }
}

}  // namespace lm::host::detector
