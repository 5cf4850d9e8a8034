#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/gst/stream.h"

namespace lm::gst {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

// The square is there in frames 3 to 9.
constexpr Scene passing{.last = 10};

guint64 timeIn(const GstMessage* message, const char* field) {
  guint64 time = 0;
  EXPECT_TRUE(
      gst_structure_get_clock_time(gst_message_get_structure(const_cast<GstMessage*>(message)), field, &time))
      << field;
  return time;
}

const char* typeOf(const Stream::Message& message) {
  return gst_structure_get_string(gst_message_get_structure(message.get()), "type");
}

TEST(GstMessages, HaveTheBoxesOfTheFrame) {
  Stream stream("regions=\"door: -1,-1 2,-1 2,2 -1,2\"");
  stream.setFormat(GST_VIDEO_FORMAT_GRAY8);
  std::size_t found = 0;
  for (int i = 0; i < 8; ++i) {
    const FoundBoxes boxes = stream.frame(i);
    std::size_t messages = 0;
    for (const Stream::Message& message : stream.messages(GST_MESSAGE_ELEMENT)) {
      if (std::string(typeOf(message)) != "boxes") continue;
      ++messages;
      const GstStructure* const fields = gst_message_get_structure(message.get());
      const GValue* const list = gst_structure_get_value(fields, "boxes");
      ASSERT_EQ(gst_value_array_get_size(list), boxes.size());
      for (guint j = 0; j < boxes.size(); ++j) {
        const auto* const box =
            static_cast<const GstStructure*>(g_value_get_boxed(gst_value_array_get_value(list, j)));
        FoundBox said;
        EXPECT_TRUE(gst_structure_get(box, "x", G_TYPE_INT, &said.x, "y", G_TYPE_INT, &said.y, "width",
                                      G_TYPE_INT, &said.width, "height", G_TYPE_INT, &said.height, nullptr));
        const GValue* const regions = gst_structure_get_value(box, "regions");
        ASSERT_EQ(gst_value_array_get_size(regions), 1U);
        said.regions.emplace_back(g_value_get_string(gst_value_array_get_value(regions, 0)));
        EXPECT_EQ(said, boxes[j]);
      }
    }
    EXPECT_EQ(messages, boxes.empty() ? 0U : 1U) << i;
    found += boxes.size();
  }
  EXPECT_GT(found, 2U);
}

TEST(GstMessages, StateTimestampStreamTimeAndRunningTime) {
  Stream stream("post-messages=all");
  stream.setFormat(GST_VIDEO_FORMAT_GRAY8);
  GstSegment segment;
  gst_segment_init(&segment, GST_FORMAT_TIME);
  segment.start = 10 * GST_SECOND;
  segment.time = 100 * GST_SECOND;
  segment.base = 3 * GST_SECOND;
  stream.event(gst_event_new_segment(&segment));
  Library library(GST_VIDEO_FORMAT_GRAY8, LIGHTMOTION_FORMAT_GREY);
  bool any = false;
  for (int i = 0; i < 8; ++i) {
    const GstClockTime time = static_cast<GstClockTime>(i) * sceneInterval;
    ASSERT_EQ(stream.push(bufferOf({}, GST_VIDEO_FORMAT_GRAY8, i), segment.start + time), library.frame(i));
    for (const Stream::Message& message : stream.messages(GST_MESSAGE_ELEMENT)) {
      EXPECT_EQ(timeIn(message.get(), "timestamp"), segment.start + time);
      EXPECT_EQ(timeIn(message.get(), "stream-time"), segment.time + time);
      EXPECT_EQ(timeIn(message.get(), "running-time"), segment.base + time);
      any = true;
    }
  }
  EXPECT_TRUE(any);
}

TEST(GstMessages, EventsBeginAtOnceAndEndAfterTheHoldTime) {
  Stream stream("hold=500 post-messages=events");
  stream.setFormat(GST_VIDEO_FORMAT_GRAY8, passing);
  int firstFrame = -1;
  int lastFrame = -1;
  int frames = 0;
  int ended = -1;
  for (int i = 0; i < 130 && ended < 0; ++i) {
    if (!stream.frame(i).empty()) {
      if (firstFrame < 0) firstFrame = i;
      lastFrame = i;
      ++frames;
    }
    for (const Stream::Message& message : stream.messages(GST_MESSAGE_ELEMENT)) {
      const GstStructure* const fields = gst_message_get_structure(message.get());
      guint64 number = 0;
      EXPECT_TRUE(gst_structure_get_uint64(fields, "event", &number));
      EXPECT_EQ(number, 1U);
      EXPECT_EQ(timeIn(message.get(), "hold"), 500 * GST_MSECOND);
      if (std::string(typeOf(message)) == "event-begin") {
        EXPECT_EQ(i, firstFrame);
        EXPECT_EQ(timeIn(message.get(), "running-time"), static_cast<GstClockTime>(i) * sceneInterval);
      } else {
        ended = i;
        EXPECT_STREQ(typeOf(message), "event-end");
        EXPECT_STREQ(gst_structure_get_string(fields, "reason"), "quiet");
        guint64 counted = 0;
        EXPECT_TRUE(gst_structure_get_uint64(fields, "frames", &counted));
        EXPECT_EQ(counted, static_cast<guint64>(frames));
        EXPECT_EQ(timeIn(message.get(), "running-time"),
                  static_cast<GstClockTime>(lastFrame) * sceneInterval);
        EXPECT_EQ(timeIn(message.get(), "duration"),
                  static_cast<GstClockTime>(lastFrame - firstFrame) * sceneInterval);
      }
    }
  }
  ASSERT_GE(firstFrame, 0);
  EXPECT_EQ(ended, lastFrame + 13);  // 520 ms; 12 frames are 480
}

TEST(GstMessages, TheEndOfTheStreamEndsTheEvent) {
  Stream stream;
  stream.setFormat(GST_VIDEO_FORMAT_GRAY8);
  for (int i = 0; i < 8; ++i) stream.frame(i);
  EXPECT_THAT(stream.reports("event-begin"), ElementsAre(HasSubstr("event=(guint64)1")));
  stream.event(gst_event_new_eos());
  EXPECT_THAT(stream.reports("event-end"), ElementsAre(HasSubstr("reason=(string)eos")));
}

TEST(GstMessages, AreThoseThatWereAskedFor) {
  for (const char* which : {"none", "events"}) {
    Stream stream(std::string("post-messages=") + which);
    stream.setFormat(GST_VIDEO_FORMAT_GRAY8);
    for (int i = 0; i < 8; ++i) stream.frame(i);
    EXPECT_FALSE(boxesOf(stream.last()).empty());
    stream.event(gst_event_new_eos());
    const std::size_t expected = std::string(which) == "events" ? 2 : 0;
    EXPECT_EQ(stream.messages(GST_MESSAGE_ELEMENT).size(), expected) << which;
  }
}

TEST(GstMessages, ABufferThatIsTooSmallIsAnError) {
  Stream stream;
  stream.setFormat(GST_VIDEO_FORMAT_GRAY8);
  stream.frame(0);
  GstBuffer* const buffer = paddedBufferOf({}, GST_VIDEO_FORMAT_GRAY8, 1, 0, 0);
  gst_buffer_set_size(buffer, 100 * 69 + 98);
  stream.push(buffer, sceneInterval);
  EXPECT_EQ(stream.flow(), GST_FLOW_ERROR);
  EXPECT_THAT(stream.texts(GST_MESSAGE_ERROR), ElementsAre("A buffer is smaller than its frame."));
}

}  // namespace
}  // namespace lm::gst
