#include <opencv2/video/background_segm.hpp>

#include "bench/peers/subtractor.h"

namespace lm::bench {

std::unique_ptr<Peer> make_mog2(cv::Size /*frame*/) {
  const auto model = cv::createBackgroundSubtractorMOG2();
  model->setDetectShadows(false);
  return std::make_unique<Subtractor>(model);
}

}  // namespace lm::bench
