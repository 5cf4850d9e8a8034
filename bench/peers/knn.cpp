#include <opencv2/video/background_segm.hpp>

#include "bench/peers/subtractor.h"

namespace lm::bench {

std::unique_ptr<Peer> make_knn(cv::Size /*frame*/) {
  const auto model = cv::createBackgroundSubtractorKNN();
  model->setDetectShadows(false);
  return std::make_unique<Subtractor>(model);
}

}  // namespace lm::bench
