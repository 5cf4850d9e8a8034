#include "host/events/hidden_change.h"

#include <opencv2/imgproc.hpp>

namespace lm::host::events {
namespace {

const cv::Size kSamples(320, 180);
constexpr double kStep = 20;  // grey levels; more than camera noise
constexpr int kLeast = 6;     // samples that change: one ten-thousandth of the picture

template <typename Inside>
cv::Mat mask_of(Inside inside) {
  cv::Mat mask(kSamples, CV_8U, cv::Scalar(0));
  for (int y = 0; y < mask.rows; ++y) {
    for (int x = 0; x < mask.cols; ++x) {
      if (inside(cv::Point2d((x + 0.5) / mask.cols, (y + 0.5) / mask.rows)))
        mask.at<std::uint8_t>(y, x) = 255;
    }
  }
  return mask;
}

}  // namespace

HiddenChange::HiddenChange(const detector::Regions& regions) {
  for (const detector::Region& region : regions.excluded()) {
    const cv::Mat mask = mask_of([&](cv::Point2d point) { return region.contains(point); });
    places_.push_back({"the exclusion region \"" + region.name + "\"", mask, 0});
  }
  const cv::Mat outside = mask_of([&](cv::Point2d point) {
    for (const detector::Region& region : regions.included()) {
      if (region.contains(point)) return false;
    }
    return true;
  });
  if (cv::countNonZero(outside) > 0) places_.push_back({"the area outside all regions", outside, 0});
}

void HiddenChange::look(const cv::Mat& image, bool counts) {
  if (places_.empty()) return;
  cv::Mat small;
  cv::resize(image, small, kSamples, 0, 0, cv::INTER_NEAREST);
  if (small.channels() > 1) cv::cvtColor(small, small, cv::COLOR_BGR2GRAY);
  if (counts && !last_.empty()) {
    cv::Mat change;
    cv::absdiff(small, last_, change);
    for (HiddenPlace& place : places_) {
      if (cv::countNonZero((change > kStep) & place.mask) >= kLeast) ++place.pictures;
    }
  }
  last_ = small;
}

}  // namespace lm::host::events
