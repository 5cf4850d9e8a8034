// Boxes and a caption drawn into a frame.
#pragma once

#include <opencv2/core.hpp>
#include <string>

#include "host/events/event.h"

namespace lm::host::outputs {

// The pixels covered by a box in fractions of the frame, clipped to the frame; empty if the box is outside.
cv::Rect pixels_of(const cv::Rect2d& box, cv::Size frame);

// The line width of boxes: at least one pixel, more in larger frames so that it is visible when scaled down.
int line_width(cv::Size frame);

// Draws the boxes with their ids and, in the upper left corner, the caption if not empty. The text size
// depends on the frame size; frames too small for legible text get no caption.
void draw_overlay(cv::Mat& image, const events::Boxes& boxes, const std::string& caption);

// Draws the paths of the event's objects.
void draw_paths(cv::Mat& image, const events::Event& event);

}  // namespace lm::host::outputs
