// Outlines in frames.
#pragma once

#include <gst/video/video.h>

#include <vector>

#include "lightmotion/lightmotion.h"

namespace lm::gst {

// White, two pixels wide, inside the boxes; in planar formats in the luma plane only. `frame`: mapped for
// writing.
void drawOutlines(GstVideoFrame& frame, const std::vector<lightmotion_box>& boxes);

}  // namespace lm::gst
