#include "bench/peers/subtractor.h"

#include <opencv2/imgproc.hpp>

namespace lm::bench {

void Subtractor::find_mask(const cv::Mat& frame, const std::string& /*time*/) { model_->apply(frame, mask_); }

void Subtractor::find_objects() {
  static const cv::Mat cross = cv::getStructuringElement(cv::MORPH_CROSS, {3, 3});
  constexpr int layers = 3;
  constexpr int neighbours = 4;
  cv::erode(mask_, eroded_, cross, {-1, -1}, layers);
  cv::connectedComponentsWithStats(eroded_, labels_, statistics_, centres_, neighbours, CV_32S);
}

}  // namespace lm::bench
