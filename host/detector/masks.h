// The connected parts of a mask, as runs of pixels. For small masks this is several times as fast as labels
// in a picture, because most pixels are in few runs.
#pragma once

#include <cstdint>
#include <opencv2/core.hpp>
#include <vector>

namespace lm::host::detector {

struct Run {
  int y = 0, begin = 0, end = 0;  // columns [begin, end)
  int part = 0;                   // from 0
};

struct ConnectedParts {
  std::vector<Run> runs;
  std::vector<cv::Rect> boxes;  // of each part
  std::vector<int> areas;       // in pixels
};

enum class Touching { kSides, kCorners };

// Of a mask, 8 bits, the parts that are not 0. Runs in union-find: K. Wu, E. Otoo, K. Suzuki, "Optimizing
// two-pass connected-component labeling algorithms", Pattern Analysis and Applications 12, 2009.
ConnectedParts connected_parts(const cv::Mat& mask, Touching touching);

// The number of pixels of a run that are set in a mask of 0 and 255.
int count_in(const Run& run, const cv::Mat& mask);

// Sets a run's pixels.
void set(cv::Mat& mask, const Run& run, std::uint8_t value);

// Masks of 0 and 255, wider and narrower by one pixel on all sides; nothing comes in over the border.
cv::Mat dilated(const cv::Mat& mask);
cv::Mat eroded(const cv::Mat& mask);

}  // namespace lm::host::detector
