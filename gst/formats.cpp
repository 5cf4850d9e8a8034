#include "gst/formats.h"

#include "lightmotion/lightmotion.h"

namespace lm::gst {

int formatOf(GstVideoFormat format) {
  switch (format) {
    case GST_VIDEO_FORMAT_GRAY8:
      return LIGHTMOTION_FORMAT_GREY;
    case GST_VIDEO_FORMAT_I420:
    case GST_VIDEO_FORMAT_YV12:
    case GST_VIDEO_FORMAT_Y42B:
    case GST_VIDEO_FORMAT_Y444:
      return LIGHTMOTION_FORMAT_I420;
    case GST_VIDEO_FORMAT_NV12:
    case GST_VIDEO_FORMAT_NV21:
    case GST_VIDEO_FORMAT_NV16:
      return LIGHTMOTION_FORMAT_NV12;
    case GST_VIDEO_FORMAT_BGR:
      return LIGHTMOTION_FORMAT_BGR;
    case GST_VIDEO_FORMAT_RGB:
      return LIGHTMOTION_FORMAT_RGB;
    case GST_VIDEO_FORMAT_BGRx:
    case GST_VIDEO_FORMAT_BGRA:
      return LIGHTMOTION_FORMAT_BGRX;
    case GST_VIDEO_FORMAT_RGBx:
    case GST_VIDEO_FORMAT_RGBA:
      return LIGHTMOTION_FORMAT_RGBX;
    default:
      return LIGHTMOTION_FORMAT_UNKNOWN;
  }
}

}  // namespace lm::gst
