#include "tests/gst/scene.h"

#include <cstring>

namespace lm::gst {
namespace {

constexpr int side = 24;
constexpr int enters = 3;
constexpr std::uint8_t square = 220;  // its grey value
constexpr std::uint8_t rest = 0x5A;   // of padding and of planes that are not read

int bytesPerPixel(GstVideoFormat format) {
  return GST_VIDEO_FORMAT_INFO_PSTRIDE(gst_video_format_get_info(format), 0);
}

// The components of the square change in turn, so that the order of the colours matters.
std::uint8_t componentOf(int grey, int component, int frame) {
  const int darker = grey == square && (frame + component) % 4 == 0 ? 70 : 0;
  return static_cast<std::uint8_t>(grey + 9 * (component - 1) - darker);
}

bool redFirst(GstVideoFormat format) {
  return format == GST_VIDEO_FORMAT_RGB || format == GST_VIDEO_FORMAT_RGBx || format == GST_VIDEO_FORMAT_RGBA;
}

}  // namespace

std::uint8_t greyAt(const Scene& scene, int x, int y, int frame) {
  const int left = scene.step * (frame - enters) % (scene.width - side);
  const bool present = frame >= enters && frame < scene.last;
  if (present && x >= left && x < left + side && y >= scene.top && y < scene.top + side) return square;
  return static_cast<std::uint8_t>(60 + (x * 7 + y * 13 + x * y % 11) % 40);
}

std::vector<std::uint8_t> pixelsOf(const Scene& scene, GstVideoFormat format, int frame) {
  const int channels = bytesPerPixel(format);
  std::vector<std::uint8_t> pixels;
  for (int y = 0; y < scene.height; ++y) {
    for (int x = 0; x < scene.width; ++x) {
      const int grey = greyAt(scene, x, y, frame);
      for (int i = 0; i < channels; ++i) {
        const int component = redFirst(format) && i < 3 ? 2 - i : i;
        pixels.push_back(channels == 1 ? static_cast<std::uint8_t>(grey)
                                       : componentOf(grey, component, frame));
      }
    }
  }
  return pixels;
}

GstBuffer* bufferOf(const Scene& scene, GstVideoFormat format, int frame) {
  GstVideoInfo info;
  gst_video_info_set_format(&info, format, static_cast<guint>(scene.width), static_cast<guint>(scene.height));
  GstBuffer* const buffer = gst_buffer_new_allocate(nullptr, GST_VIDEO_INFO_SIZE(&info), nullptr);
  gst_buffer_memset(buffer, 0, rest, GST_VIDEO_INFO_SIZE(&info));
  const std::vector<std::uint8_t> pixels = pixelsOf(scene, format, frame);
  const auto row = static_cast<gsize>(scene.width * bytesPerPixel(format));
  for (int y = 0; y < scene.height; ++y) {
    const auto at = static_cast<gsize>(y) * static_cast<gsize>(GST_VIDEO_INFO_PLANE_STRIDE(&info, 0));
    gst_buffer_fill(buffer, at, pixels.data() + static_cast<gsize>(y) * row, row);
  }
  return buffer;
}

GstBuffer* paddedBufferOf(const Scene& scene, GstVideoFormat format, int frame, gsize offset, gint padding) {
  GstVideoInfo info;
  gst_video_info_set_format(&info, format, static_cast<guint>(scene.width), static_cast<guint>(scene.height));
  gsize offsets[GST_VIDEO_MAX_PLANES] = {};
  gint strides[GST_VIDEO_MAX_PLANES] = {};
  gsize end = offset;
  for (guint plane = 0; plane < GST_VIDEO_INFO_N_PLANES(&info); ++plane) {
    offsets[plane] = end;
    strides[plane] = GST_VIDEO_INFO_PLANE_STRIDE(&info, plane) + padding;
    end += static_cast<gsize>(strides[plane]) * static_cast<gsize>(scene.height);
  }
  GstBuffer* const buffer = gst_buffer_new_allocate(nullptr, end, nullptr);
  gst_buffer_memset(buffer, 0, rest, end);
  const std::vector<std::uint8_t> pixels = pixelsOf(scene, format, frame);
  const auto row = static_cast<gsize>(scene.width * bytesPerPixel(format));
  for (int y = 0; y < scene.height; ++y) {
    const gsize at = offset + static_cast<gsize>(y) * static_cast<gsize>(strides[0]);
    gst_buffer_fill(buffer, at, pixels.data() + static_cast<gsize>(y) * row, row);
  }
  gst_buffer_add_video_meta_full(buffer, GST_VIDEO_FRAME_FLAG_NONE, format, static_cast<guint>(scene.width),
                                 static_cast<guint>(scene.height), GST_VIDEO_INFO_N_PLANES(&info), offsets,
                                 strides);
  return buffer;
}

}  // namespace lm::gst
