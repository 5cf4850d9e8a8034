// Boxes and a caption drawn into a frame.
#pragma once

#include <opencv2/core.hpp>
#include <string>
#include <vector>

namespace lm::host::outputs {

// The pixels that a box given in fractions of the frame covers, cut off at the frame's edges; empty when
// nothing of it lies inside.
cv::Rect pixels_of(const cv::Rect2d& box, cv::Size frame);

// The width of a box's line: a pixel at least, thicker in larger frames so that it shows when scaled down.
int line_width(cv::Size frame);

// Draws each box and, in the upper left corner, the caption, when it is not empty, as large as suits the
// frame. Frames too small for legible letters get no caption.
void draw_overlay(cv::Mat& image, const std::vector<cv::Rect2d>& boxes, const std::string& caption);

}  // namespace lm::host::outputs
