// Boxes and a caption drawn into a frame.
#pragma once

#include <opencv2/core.hpp>
#include <string>

#include "host/events/box.h"

namespace lm::host::outputs {

// The pixels covered by a box in fractions of the frame, clipped to the frame; empty if the box is outside.
cv::Rect pixels_of(const cv::Rect2d& box, cv::Size frame);

// The line width of boxes: at least one pixel, more in larger frames so that it is visible when scaled down.
int line_width(cv::Size frame);

// Draws the boxes and, in the upper left corner, the caption if not empty. The text size depends on the frame
// size; frames too small for legible text get no caption.
void draw_overlay(cv::Mat& image, const events::Boxes& boxes, const std::string& caption);

}  // namespace lm::host::outputs
