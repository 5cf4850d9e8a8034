// A scene for the element, in every format that it takes: a textured background and a bright square that
// moves.
#pragma once

#include <gst/video/video.h>

#include <cstdint>
#include <vector>

namespace lm::gst {

constexpr int sceneWidth = 99;  // rows of most formats are padded
constexpr int sceneHeight = 70;
constexpr GstClockTime sceneInterval = 40 * GST_MSECOND;

// Where the square is: it enters in frame 3, moves right, and stays away from frame `last` on.
struct Scene {
  int width = sceneWidth;
  int height = sceneHeight;
  int last = 1000;
  int top = 20;  // of the square
  int step = 4;  // pixels per frame that it moves
};

// The grey value of a pixel of the plain picture.
std::uint8_t greyAt(const Scene& scene, int x, int y, int frame);

// The first plane as the library takes it: rows without padding. Colours are made of the grey value.
std::vector<std::uint8_t> pixelsOf(const Scene& scene, GstVideoFormat format, int frame);

// A buffer with the frame, in GStreamer's default layout; the other planes are grey. Padding is not 0.
GstBuffer* bufferOf(const Scene& scene, GstVideoFormat format, int frame);

// The same in a layout of its own: `offset` bytes before the first plane, and `padding` after every row.
GstBuffer* paddedBufferOf(const Scene& scene, GstVideoFormat format, int frame, gsize offset, gint padding);

}  // namespace lm::gst
