// Tells what is only in another light from what moves.
//
// Light multiplies what a surface reflects, by about the same in all channels, and keeps its texture; an
// object brings colours and a texture of its own. (J. C. S. Jacques, C. R. Jung, S. R. Musse: "Background
// subtraction and shadow detection in grayscale video sequences", SIBGRAPI 2005; A. Sanin, C. Sanderson,
// B. C. Lovell: "Shadow detection: A survey and comparative evaluation of recent methods", Pattern
// Recognition 45, 2012, whose methods by large regions decide about whole regions by their texture.)
#pragma once

#include <opencv2/core.hpp>

namespace lm::host::detector {

// Parts of the foreground: 255 inside, else 0. What is in neither cannot be decided.
struct Parts {
  cv::Mat light;   // the ground in another light
  cv::Mat object;  // with colours or a texture of its own
};

// `now`, 8 bits with three channels, and `ground`, of Ground::picture(): the same place at half the size of
// the frame. `foreground`: 255 where the picture differs from the ground, else 0. `sigma`: noise of the
// frame, in grey levels.
Parts parts_of(const cv::Mat& now, const cv::Mat& ground, const cv::Mat& foreground, double sigma);

}  // namespace lm::host::detector
