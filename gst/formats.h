// The pixel formats that the element takes without conversion.
#pragma once

#include <gst/video/video.h>

namespace lm::gst {

// As in caps. Of planar formats only the luma plane is read, the first one.
#define LIGHTMOTION_GST_FORMATS \
  "{ GRAY8, I420, YV12, NV12, NV21, Y42B, Y444, NV16, BGR, RGB, BGRx, BGRA, RGBx, RGBA }"

// The lightmotion_format of the first plane; LIGHTMOTION_FORMAT_UNKNOWN for a format that is not listed.
int formatOf(GstVideoFormat format);

}  // namespace lm::gst
