// The boxes are those of the library on the same frames, in every format and layout.
#include <gtest/gtest.h>

#include <thread>

#include "tests/gst/stream.h"

namespace lm::gst {
namespace {

constexpr int frames = 25;

struct Row {
  GstVideoFormat format;
  int libraryFormat;
};

const Row rows[] = {
    {GST_VIDEO_FORMAT_GRAY8, LIGHTMOTION_FORMAT_GREY}, {GST_VIDEO_FORMAT_I420, LIGHTMOTION_FORMAT_GREY},
    {GST_VIDEO_FORMAT_YV12, LIGHTMOTION_FORMAT_GREY},  {GST_VIDEO_FORMAT_NV12, LIGHTMOTION_FORMAT_GREY},
    {GST_VIDEO_FORMAT_NV21, LIGHTMOTION_FORMAT_GREY},  {GST_VIDEO_FORMAT_Y42B, LIGHTMOTION_FORMAT_GREY},
    {GST_VIDEO_FORMAT_Y444, LIGHTMOTION_FORMAT_GREY},  {GST_VIDEO_FORMAT_NV16, LIGHTMOTION_FORMAT_GREY},
    {GST_VIDEO_FORMAT_BGR, LIGHTMOTION_FORMAT_BGR},    {GST_VIDEO_FORMAT_RGB, LIGHTMOTION_FORMAT_RGB},
    {GST_VIDEO_FORMAT_BGRx, LIGHTMOTION_FORMAT_BGRX},  {GST_VIDEO_FORMAT_BGRA, LIGHTMOTION_FORMAT_BGRX},
    {GST_VIDEO_FORMAT_RGBx, LIGHTMOTION_FORMAT_RGBX},  {GST_VIDEO_FORMAT_RGBA, LIGHTMOTION_FORMAT_RGBX},
};

TEST(GstBoxes, AreThoseOfTheLibraryInEveryFormat) {
  for (const auto& [format, libraryFormat] : rows) {
    SCOPED_TRACE(gst_video_format_to_string(format));
    Stream stream;
    stream.setFormat(format);
    Library library(format, libraryFormat);
    std::size_t found = 0;
    for (int i = 0; i < frames; ++i) {
      const FoundBoxes boxes = stream.frame(i);
      ASSERT_EQ(boxes, library.frame(i)) << i;
      found += boxes.size();
    }
    EXPECT_GT(found, 15U);
  }
}

// Changes are sought in blue, green and red in turn: what changes one colour at a time is still in one order
// of the colours only, and absorbed.
TEST(GstBoxes, DependOnTheOrderOfColours) {
  const Scene still{.step = 0};
  const char* const config = R"({"absorb_seconds":0.2})";
  for (const auto& [format, libraryFormat] : rows) {
    if (GST_VIDEO_FORMAT_INFO_IS_YUV(gst_video_format_get_info(format)) || format == GST_VIDEO_FORMAT_GRAY8)
      continue;
    SCOPED_TRACE(gst_video_format_to_string(format));
    const int swapped[] = {LIGHTMOTION_FORMAT_RGB, LIGHTMOTION_FORMAT_BGR, LIGHTMOTION_FORMAT_RGBX,
                           LIGHTMOTION_FORMAT_BGRX};
    Stream stream("absorb=0.2");
    stream.setFormat(format, still);
    Library library(format, libraryFormat, still, config);
    Library other(format, swapped[libraryFormat - LIGHTMOTION_FORMAT_BGR], still, config);
    bool differs = false;
    for (int i = 0; i < frames; ++i) {
      const FoundBoxes boxes = stream.frame(i);
      ASSERT_EQ(boxes, library.frame(i)) << i;
      differs = boxes != other.frame(i) || differs;
    }
    EXPECT_TRUE(differs);
  }
}

TEST(GstBoxes, FollowTheStridesAndOffsetsOfTheBuffer) {
  for (const GstVideoFormat format : {GST_VIDEO_FORMAT_I420, GST_VIDEO_FORMAT_NV12, GST_VIDEO_FORMAT_BGR}) {
    SCOPED_TRACE(gst_video_format_to_string(format));
    Stream plain;
    Stream padded;
    plain.setFormat(format);
    padded.setFormat(format);
    for (int i = 0; i < frames; ++i) {
      GstBuffer* const buffer = paddedBufferOf({}, format, i, 48, 16 * (i % 4));
      ASSERT_EQ(padded.push(buffer, static_cast<GstClockTime>(i) * sceneInterval), plain.frame(i)) << i;
    }
  }
}

TEST(GstBoxes, NameTheRegionsThatTheyTouch) {
  Stream stream("regions=\"left: -1,-1 0.5,-1 0.5,2 -1,2; all: -1,-1 2,-1 2,2 -1,2\"");
  stream.setFormat(GST_VIDEO_FORMAT_GRAY8);
  bool left = false;
  bool notLeft = false;
  for (int i = 0; i < 20; ++i) {
    for (const FoundBox& box : stream.frame(i)) {
      ASSERT_FALSE(box.regions.empty());
      EXPECT_EQ(box.regions.back(), "all");
      left = left || box.regions.front() == "left";
      notLeft = notLeft || box.regions.size() == 1;
    }
  }
  EXPECT_TRUE(left);
  EXPECT_TRUE(notLeft);
}

TEST(GstBoxes, OtherFormatsAreRefused) {
  Stream stream;
  GstCaps* const caps = gst_caps_from_string("video/x-raw,format=YUY2,width=64,height=64,framerate=25/1");
  GstPad* const sink = gst_element_get_static_pad(stream.element(), "sink");
  EXPECT_FALSE(gst_pad_query_accept_caps(sink, caps));
  gst_object_unref(sink);
  gst_caps_unref(caps);
}

TEST(GstBoxes, PixelsAreNotCopiedAndABufferOfSomebodyElseStaysAsItIs) {
  Stream stream;
  stream.setFormat(GST_VIDEO_FORMAT_I420);
  for (int i = 0; i < 8; ++i) {
    GstBuffer* const buffer = gst_buffer_ref(bufferOf({}, GST_VIDEO_FORMAT_I420, i));
    stream.push(buffer, static_cast<GstClockTime>(i) * sceneInterval);
    EXPECT_EQ(gst_buffer_peek_memory(stream.last(), 0), gst_buffer_peek_memory(buffer, 0));
    EXPECT_TRUE(boxesOf(buffer).empty());
    gst_buffer_unref(buffer);
  }
  EXPECT_FALSE(boxesOf(stream.last()).empty());
}

TEST(GstBoxes, EveryNthFrameIsAnalysed) {
  Stream stream("interval=3");
  stream.setFormat(GST_VIDEO_FORMAT_GRAY8);
  Library library(GST_VIDEO_FORMAT_GRAY8, LIGHTMOTION_FORMAT_GREY);
  std::size_t found = 0;
  for (int i = 0; i < frames; ++i) {
    const FoundBoxes boxes = stream.frame(i);
    ASSERT_EQ(boxes, i % 3 == 0 ? library.frame(i) : FoundBoxes()) << i;
    found += boxes.size();
  }
  EXPECT_GT(found, 4U);
}

TEST(GstBoxes, FramesWithoutTimestampsAreAnalysed) {
  Stream stream;
  stream.setFormat(GST_VIDEO_FORMAT_GRAY8);
  std::size_t found = 0;
  for (int i = 0; i < 10; ++i) {
    found += stream.push(bufferOf({}, GST_VIDEO_FORMAT_GRAY8, i), GST_CLOCK_TIME_NONE).size();
  }
  EXPECT_GT(found, 3U);
}

TEST(GstBoxes, FramesOfAStreamWithoutTimeAreAnalysed) {
  Stream stream;
  stream.setFormat(GST_VIDEO_FORMAT_GRAY8);
  GstSegment segment;
  gst_segment_init(&segment, GST_FORMAT_BYTES);
  stream.event(gst_event_new_segment(&segment));
  std::size_t found = 0;
  for (int i = 0; i < 10; ++i) found += stream.frame(i).size();
  EXPECT_GT(found, 3U);
}

TEST(GstBoxes, ElementsInDifferentThreadsDoNotDisturbEachOther) {
  const auto run = [](GstVideoFormat format, int libraryFormat, const Scene& scene) {
    Stream stream;
    stream.setFormat(format, scene);
    Library library(format, libraryFormat, scene);
    for (int i = 0; i < frames; ++i) ASSERT_EQ(stream.frame(i), library.frame(i)) << i;
  };
  const Stream prepared;  // GStreamer is initialised once
  std::thread other(run, GST_VIDEO_FORMAT_BGR, LIGHTMOTION_FORMAT_BGR, Scene{.top = 5});
  run(GST_VIDEO_FORMAT_GRAY8, LIGHTMOTION_FORMAT_GREY, Scene{.width = 160, .height = 120, .top = 60});
  other.join();
}

}  // namespace
}  // namespace lm::gst
