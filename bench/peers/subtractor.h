// OpenCV's background subtractors, which share an interface: the masks differ, the remaining work is the
// same.
#pragma once

#include <opencv2/video/background_segm.hpp>
#include <utility>

#include "bench/peers/peer.h"

namespace lm::bench {

class Subtractor : public Peer {
 public:
  explicit Subtractor(cv::Ptr<cv::BackgroundSubtractor> model) : model_(std::move(model)) {}

  void find_mask(const cv::Mat& frame, const std::string& time) override;
  void find_objects() override;
  cv::Mat mask() const override { return mask_; }

 private:
  cv::Ptr<cv::BackgroundSubtractor> model_;
  cv::Mat mask_, eroded_, labels_, statistics_, centres_;
};

}  // namespace lm::bench
