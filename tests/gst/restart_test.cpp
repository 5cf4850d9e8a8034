// After an interruption the element behaves as a new one.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/gst/stream.h"

namespace lm::gst {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

constexpr int before = 12;
constexpr int after = 20;

// Frames up to `after`, as of a library that has seen none before.
void expectNew(Stream& stream, GstVideoFormat format, int libraryFormat, const Scene& scene, bool discont) {
  Library library(format, libraryFormat, scene);
  std::size_t found = 0;
  for (int i = before; i < after; ++i) {
    const FoundBoxes boxes = stream.frame(i, discont && i == before);
    ASSERT_EQ(boxes, library.frame(i)) << i;
    found += boxes.size();
  }
  EXPECT_GT(found, 5U);
}

Stream& started(Stream& stream) {
  stream.setFormat(GST_VIDEO_FORMAT_GRAY8);
  for (int i = 0; i < before; ++i) stream.frame(i, i == 0);
  EXPECT_FALSE(boxesOf(stream.last()).empty());
  return stream;
}

TEST(GstRestart, FollowsADiscontinuity) {
  Stream stream;
  expectNew(started(stream), GST_VIDEO_FORMAT_GRAY8, LIGHTMOTION_FORMAT_GREY, {}, true);
  EXPECT_THAT(stream.reports("event-end"), ElementsAre(HasSubstr("reason=(string)discont")));
}

TEST(GstRestart, FollowsAFlush) {
  Stream stream;
  started(stream).event(gst_event_new_flush_start());
  stream.event(gst_event_new_flush_stop(TRUE));
  GstSegment segment;
  gst_segment_init(&segment, GST_FORMAT_TIME);
  stream.event(gst_event_new_segment(&segment));
  expectNew(stream, GST_VIDEO_FORMAT_GRAY8, LIGHTMOTION_FORMAT_GREY, {}, false);
  EXPECT_THAT(stream.reports("event-end"), ElementsAre(HasSubstr("reason=(string)flush")));
}

TEST(GstRestart, FollowsAnotherStream) {
  Stream stream;
  started(stream).event(gst_event_new_stream_start("another"));
  expectNew(stream, GST_VIDEO_FORMAT_GRAY8, LIGHTMOTION_FORMAT_GREY, {}, false);
  EXPECT_THAT(stream.reports("event-end"), ElementsAre(HasSubstr("reason=(string)stream")));
}

TEST(GstRestart, FollowsAnotherSizeAndFormat) {
  Stream stream;
  const Scene scene{.width = 150, .height = 90, .top = 40};
  started(stream).setFormat(GST_VIDEO_FORMAT_BGR, scene);
  expectNew(stream, GST_VIDEO_FORMAT_BGR, LIGHTMOTION_FORMAT_BGR, scene, false);
  EXPECT_THAT(stream.reports("event-end"), ElementsAre(HasSubstr("reason=(string)caps")));
}

TEST(GstRestart, FollowsAStop) {
  Stream stream;
  started(stream);
  gst_element_set_state(stream.harness()->element, GST_STATE_READY);
  EXPECT_THAT(stream.reports("event-end"), ElementsAre(HasSubstr("reason=(string)stop")));
}

TEST(GstRestart, TheSameCapsChangeNothing) {
  Stream stream;
  started(stream);
  Library library(GST_VIDEO_FORMAT_GRAY8, LIGHTMOTION_FORMAT_GREY);
  for (int i = 0; i < before; ++i) library.frame(i);
  stream.setFormat(GST_VIDEO_FORMAT_GRAY8);
  for (int i = before; i < after; ++i) ASSERT_EQ(stream.frame(i), library.frame(i)) << i;
}

TEST(GstRestart, TheFirstFrameAfterwardsIsAnalysedWhateverTheInterval) {
  Stream stream("interval=5");
  stream.setFormat(GST_VIDEO_FORMAT_GRAY8);
  for (int i = 0; i < 3; ++i) stream.frame(i);
  Library library(GST_VIDEO_FORMAT_GRAY8, LIGHTMOTION_FORMAT_GREY);
  FoundBoxes boxes;
  for (int i = 3; i < 14; ++i) {
    const FoundBoxes now = stream.frame(i, i == 3);
    ASSERT_EQ(now, (i - 3) % 5 == 0 ? library.frame(i) : FoundBoxes()) << i;
    boxes.insert(boxes.end(), now.begin(), now.end());
  }
  EXPECT_FALSE(boxes.empty());
}

}  // namespace
}  // namespace lm::gst
