#include <gtest/gtest.h>

#include "tests/gst/stream.h"

namespace lm::gst {
namespace {

std::vector<std::uint8_t> firstPlane(GstBuffer* buffer, const GstVideoInfo& info) {
  GstVideoFrame frame;
  EXPECT_TRUE(gst_video_frame_map(&frame, &info, buffer, GST_MAP_READ));
  const int row = GST_VIDEO_FRAME_WIDTH(&frame) * GST_VIDEO_FRAME_COMP_PSTRIDE(&frame, 0);
  std::vector<std::uint8_t> pixels;
  for (int y = 0; y < GST_VIDEO_FRAME_HEIGHT(&frame); ++y) {
    const auto* const begin = static_cast<const std::uint8_t*>(GST_VIDEO_FRAME_PLANE_DATA(&frame, 0)) +
                              y * GST_VIDEO_FRAME_PLANE_STRIDE(&frame, 0);
    pixels.insert(pixels.end(), begin, begin + row);
  }
  gst_video_frame_unmap(&frame);
  return pixels;
}

// White where a pixel is within two of a box's border, inside the box.
void outline(std::vector<std::uint8_t>& pixels, const FoundBox& box, std::size_t channels) {
  for (int y = box.y; y < box.y + box.height; ++y) {
    for (int x = box.x; x < box.x + box.width; ++x) {
      const bool border =
          x < box.x + 2 || x >= box.x + box.width - 2 || y < box.y + 2 || y >= box.y + box.height - 2;
      const std::size_t at = static_cast<std::size_t>(y * sceneWidth + x) * channels;
      if (border) std::fill_n(pixels.begin() + static_cast<std::ptrdiff_t>(at), channels, std::uint8_t{255});
    }
  }
}

TEST(GstOutline, SurroundsTheBoxesAndChangesNothingElse) {
  for (const GstVideoFormat format : {GST_VIDEO_FORMAT_I420, GST_VIDEO_FORMAT_BGR, GST_VIDEO_FORMAT_RGBA}) {
    SCOPED_TRACE(gst_video_format_to_string(format));
    GstVideoInfo info;
    gst_video_info_set_format(&info, format, sceneWidth, sceneHeight);
    Stream plain;
    Stream drawn("draw=true");
    plain.setFormat(format);
    drawn.setFormat(format);
    std::size_t found = 0;
    for (int i = 0; i < 12; ++i) {
      const FoundBoxes boxes = drawn.frame(i);
      EXPECT_EQ(boxes, plain.frame(i));
      std::vector<std::uint8_t> expected = pixelsOf({}, format, i);
      EXPECT_EQ(firstPlane(plain.last(), info), expected);
      for (const FoundBox& box : boxes) {
        outline(expected, box, static_cast<std::size_t>(GST_VIDEO_INFO_COMP_PSTRIDE(&info, 0)));
      }
      ASSERT_EQ(firstPlane(drawn.last(), info), expected) << i;
      found += boxes.size();
    }
    EXPECT_GT(found, 3U);
  }
}

TEST(GstOutline, StaysInFramesThatAreNotAnalysed) {
  GstVideoInfo info;
  gst_video_info_set_format(&info, GST_VIDEO_FORMAT_GRAY8, sceneWidth, sceneHeight);
  Stream stream("draw=true interval=4");
  stream.setFormat(GST_VIDEO_FORMAT_GRAY8);
  FoundBoxes boxes;
  for (int i = 0; i < 10; ++i) {
    const FoundBoxes now = stream.frame(i);
    if (i % 4 == 0) boxes = now;
  }
  ASSERT_FALSE(boxes.empty());
  std::vector<std::uint8_t> expected = pixelsOf({}, GST_VIDEO_FORMAT_GRAY8, 9);
  for (const FoundBox& box : boxes) outline(expected, box, 1);
  EXPECT_EQ(firstPlane(stream.last(), info), expected);
}

TEST(GstOutline, IsNotDrawnIntoMemoryThatSomebodyElseHolds) {
  Stream stream("draw=true");
  stream.setFormat(GST_VIDEO_FORMAT_GRAY8);
  GstVideoInfo info;
  gst_video_info_set_format(&info, GST_VIDEO_FORMAT_GRAY8, sceneWidth, sceneHeight);
  for (int i = 0; i < 8; ++i) {
    GstBuffer* const buffer = gst_buffer_ref(bufferOf({}, GST_VIDEO_FORMAT_GRAY8, i));
    stream.push(buffer, static_cast<GstClockTime>(i) * sceneInterval);
    EXPECT_EQ(firstPlane(buffer, info), pixelsOf({}, GST_VIDEO_FORMAT_GRAY8, i));
    gst_buffer_unref(buffer);
  }
  EXPECT_NE(firstPlane(stream.last(), info), pixelsOf({}, GST_VIDEO_FORMAT_GRAY8, 7));
}

}  // namespace
}  // namespace lm::gst
