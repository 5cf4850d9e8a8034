#include <opencv2/bgsegm.hpp>

#include "bench/peers/subtractor.h"

namespace lm::bench {

namespace {

class MaskAlone : public Subtractor {
 public:
  using Subtractor::Subtractor;
  void find_objects() override {}
};

}  // namespace

std::unique_ptr<Peer> make_cnt(cv::Size /*frame*/) {
  constexpr int stable_after = 15;  // frames; the default, as is everything except the last argument
  constexpr bool history = true;
  constexpr int stable_at_most = 15 * 60;
  constexpr bool threads = false;
  return std::make_unique<MaskAlone>(
      cv::bgsegm::createBackgroundSubtractorCNT(stable_after, history, stable_at_most, threads));
}

}  // namespace lm::bench
