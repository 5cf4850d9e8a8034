#include "host/detector/ground.h"

#include <algorithm>
#include <cstdint>
#include <opencv2/imgproc.hpp>

namespace lm::host::detector {
namespace {

using namespace std::chrono_literals;

constexpr auto kLearnEach = 500ms;  // frames that are learned
constexpr int kGradual = 5;         // cells
constexpr int kAveraged = 3;        // of these frames, about
constexpr int kWhole = 1 << 16;     // a weight

// Moves `count` values of the average towards those of a frame.
void approach(std::int16_t* average, const std::uint8_t* now, int count, int weight) {
  for (int i = 0; i < count; ++i) {
    const auto step = static_cast<std::int16_t>(now[i] * Ground::kOne - average[i]);
    average[i] = static_cast<std::int16_t>(average[i] + ((step * weight) >> 16));
  }
}

// Gradually towards what moves: an edge between two times would look like texture.
cv::Mat weights_of(const cv::Mat& moves, int learned) {
  cv::Mat weights;
  cv::dilate(moves, weights, cv::Mat::ones(kGradual, kGradual, CV_8U));
  // A weight is at most a half: its product with a step fits 16 bits and more are not needed.
  const int largest = kWhole / learned - 1;
  cv::Mat(weights == 0).convertTo(weights, CV_16U, largest / 255.0);
  cv::blur(weights, weights, {kGradual, kGradual});
  return weights;
}

}  // namespace

cv::Size half_of(const cv::Size& frame) { return {frame.width / 2, frame.height / 2}; }

cv::Mat half_sized(const cv::Mat& frame, const cv::Rect& area) {
  cv::Mat half;
  cv::resize(frame(cv::Rect(2 * area.x, 2 * area.y, 2 * area.width, 2 * area.height)), half, area.size(), 0,
             0, cv::INTER_AREA);
  return half;
}

cv::Size Ground::cells_of(const cv::Size& half) {
  return {(half.width + kCell - 1) / kCell, (half.height + kCell - 1) / kCell};
}

void Ground::learn(const cv::Mat& frame, std::chrono::microseconds time, const cv::Mat& moves) {
  if (!is_due(time)) return;
  next_ = time + kLearnEach;
  const cv::Size half = half_of(frame.size());
  cv::resize(frame(cv::Rect(0, 0, 2 * half.width, 2 * half.height)), now_, half, 0, 0, cv::INTER_AREA);
  learned_ = std::min(learned_ + 1, kAveraged);
  if (learned_ == 1) {
    now_.convertTo(picture_, CV_16S, kOne);
    return;
  }
  const cv::Mat weights = weights_of(moves, learned_);
  for (int y = 0; y < half.height; ++y) {
    const auto* weight = weights.ptr<std::uint16_t>(y / kCell);
    for (int begin = 0; begin < weights.cols;) {  // cells of equal weight
      const int end = static_cast<int>(
          std::find_if(weight + begin, weight + weights.cols, [&](int of) { return of != weight[begin]; }) -
          weight);
      const int from = 3 * kCell * begin;
      const int to = std::min(3 * kCell * end, 3 * half.width);
      if (weight[begin] > 0) {
        approach(picture_.ptr<std::int16_t>(y) + from, now_.ptr<std::uint8_t>(y) + from, to - from,
                 weight[begin]);
      }
      begin = end;
    }
  }
}

}  // namespace lm::host::detector
