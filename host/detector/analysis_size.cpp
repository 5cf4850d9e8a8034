#include "host/detector/analysis_size.h"

#include <algorithm>
#include <opencv2/imgproc.hpp>

namespace lm::host::detector {
namespace {

constexpr int kLeast = 640;  // of the longer side after halving
constexpr int kSmall = 400;  // of the longer side up to which frames are doubled

}  // namespace

cv::Size analysis_size(cv::Size source) {
  const int longer = std::max(source.width, source.height);
  if (longer <= kSmall) return source * 2;
  int part = 1;
  while (longer / (2 * part) >= kLeast) part *= 2;
  return {std::max(1, source.width / part), std::max(1, source.height / part)};
}

cv::Mat resized(const cv::Mat& picture, cv::Size size) {
  if (picture.size() == size) return picture;
  const bool smaller = size.width <= picture.cols && size.height <= picture.rows;
  // Halving has a fast version.
  if (smaller && picture.cols % 4 == 0 && picture.rows % 4 == 0 && size * 4 == picture.size())
    return resized(resized(picture, size * 2), size);
  cv::Mat result;
  cv::resize(picture, result, size, 0, 0, smaller ? cv::INTER_AREA : cv::INTER_LINEAR);
  return result;
}

}  // namespace lm::host::detector
