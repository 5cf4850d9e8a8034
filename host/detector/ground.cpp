#include "host/detector/ground.h"

#include <algorithm>
#include <cmath>
#include <opencv2/imgproc.hpp>

namespace lm::host::detector {
namespace {

using namespace std::chrono_literals;

constexpr auto kLearnEach = 500ms;  // frames that are learned
constexpr int kGradual = 17;        // pixels of the half size
constexpr int kAveraged = 3;        // of these frames, about

// Small enough to tell dark surfaces apart, large enough that their noise is not all that remains.
constexpr double kOffset = 4;

cv::Mat table_of_levels() {
  cv::Mat table(1, 256, CV_32F);
  for (int value = 0; value < 256; ++value)
    table.at<float>(value) = static_cast<float>(std::log2(value + kOffset));
  return table;
}

}  // namespace

cv::Size half_of(const cv::Size& frame) { return {frame.width / 2, frame.height / 2}; }

cv::Mat levels_of(const cv::Mat& picture) {
  static const cv::Mat kTable = table_of_levels();
  cv::Mat levels;
  cv::LUT(picture, kTable, levels);
  return levels;
}

cv::Mat half_sized(const cv::Mat& frame, const cv::Rect& area) {
  cv::Mat half;
  cv::resize(frame(cv::Rect(2 * area.x, 2 * area.y, 2 * area.width, 2 * area.height)), half, area.size(), 0,
             0, cv::INTER_AREA);
  return half;
}

void Ground::learn(const cv::Mat& frame, std::chrono::microseconds time, const cv::Mat& moves) {
  if (!is_due(time)) return;
  next_ = time + kLearnEach;
  const cv::Rect all({}, half_of(frame.size()));
  const cv::Mat now = levels_of(half_sized(frame, all));
  learned_ = std::min(learned_ + 1, kAveraged);
  if (learned_ == 1) {
    levels_ = now;
    return;
  }
  // Gradually towards what moves: an edge between two times would look like texture.
  cv::Mat weight;
  cv::dilate(moves, weight, cv::Mat::ones(kGradual, kGradual, CV_8U));
  cv::Mat(weight == 0).convertTo(weight, CV_32F, 1.0 / 255 / learned_);
  cv::blur(weight, weight, {kGradual, kGradual});
  cv::Mat weights;
  cv::cvtColor(weight, weights, cv::COLOR_GRAY2BGR);
  levels_ += (now - levels_).mul(weights);
}

}  // namespace lm::host::detector
