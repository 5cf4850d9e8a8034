// The size in which frames are analysed.
#pragma once

#include <opencv2/core.hpp>

namespace lm::host::detector {

// The detector's constants, such as the layers that are peeled off the foreground, fit pictures some 640 to
// 1000 pixels wide. So small frames are doubled and large ones halved, as often as the longer side stays at
// least 640. Whole factors, because they scale fastest and best.
cv::Size analysis_size(cv::Size source);

// The picture itself if it has that size. Smaller: each pixel is the mean of those that it replaces; larger:
// linear interpolation.
cv::Mat resized(const cv::Mat& picture, cv::Size size);

}  // namespace lm::host::detector
