#include "gst/analyser.h"

#include <array>

#include "gst/formats.h"
#include "gst/outline.h"
#include "gst/regions_text.h"

namespace lm::gst {
namespace {

using Message = std::array<char, 4096>;

GstClockTime holdOf(const Handling& handling) { return handling.hold * GST_MSECOND; }

// Unmaps when it goes out of scope.
class Mapped {
 public:
  Mapped(const GstVideoInfo& info, GstBuffer* buffer, int flags)
      : done_(gst_video_frame_map(&frame_, &info, buffer,
                                  static_cast<GstMapFlags>(flags | GST_VIDEO_FRAME_MAP_FLAG_NO_REF)) !=
              FALSE) {}
  ~Mapped() {
    if (done_) gst_video_frame_unmap(&frame_);
  }
  Mapped(const Mapped&) = delete;
  Mapped& operator=(const Mapped&) = delete;

  GstVideoFrame& frame() { return frame_; }

  // Whether all rows of the first plane are there.
  bool complete() const {
    if (!done_) return false;
    const int stride = GST_VIDEO_FRAME_PLANE_STRIDE(&frame_, 0);
    const int row = GST_VIDEO_FRAME_WIDTH(&frame_) * GST_VIDEO_FRAME_COMP_PSTRIDE(&frame_, 0);
    if (stride < row) return false;
    const auto* const begin = static_cast<const guint8*>(GST_VIDEO_FRAME_PLANE_DATA(&frame_, 0));
    const auto rows = static_cast<gsize>(GST_VIDEO_FRAME_HEIGHT(&frame_) - 1);
    const gsize bytes = rows * static_cast<gsize>(stride) + static_cast<gsize>(row);
    return begin + bytes <= frame_.map[0].data + frame_.map[0].size;
  }

 private:
  GstVideoFrame frame_;
  bool done_;
};

}  // namespace

void Analyser::setFormat(const GstVideoInfo& info, const Handling& handling) {
  restart(handling, "caps");
  detector_.reset();
  info_ = info;
}

bool Analyser::makeDetector(const Settings& settings, const std::string& fileText) {
  Message message{};
  try {
    const Configuration configuration = configurationOf(settings, fileText);
    detector_.reset(lightmotion_create_for(
        configuration.text.c_str(), GST_VIDEO_INFO_WIDTH(&info_), GST_VIDEO_INFO_HEIGHT(&info_),
        formatOf(GST_VIDEO_INFO_FORMAT(&info_)), message.data(), message.size()));
    inForce_ = configuration.document;
  } catch (const BadRegions& fault) {
    g_strlcpy(message.data(), fault.what(), message.size());
  }
  if (!detector_) {
    GST_ELEMENT_ERROR(element_, LIBRARY, SETTINGS, ("%s", message.data()), (nullptr));
  } else if (message[0] != '\0') {
    GST_ELEMENT_WARNING(element_, LIBRARY, SETTINGS, ("%s", message.data()), (nullptr));
  }
  return hasDetector();
}

void Analyser::change(const Settings& settings, const std::string& fileText) {
  if (!inForce_) return;
  Message message{};
  try {
    const Configuration wanted = configurationOf(settings, fileText);
    const std::string changes = wanted.document ? changesBetween(*inForce_, *wanted.document) : wanted.text;
    const int outcome = lightmotion_change(detector_.get(), changes.c_str(), message.data(), message.size());
    if (outcome == LIGHTMOTION_OK) inForce_ = wanted.document;
  } catch (const BadRegions& fault) {
    g_strlcpy(message.data(), fault.what(), message.size());
  }
  if (message[0] != '\0') GST_ELEMENT_WARNING(element_, LIBRARY, SETTINGS, ("%s", message.data()), (nullptr));
}

Moment Analyser::momentOf(const GstBuffer* buffer) const {
  const GstClockTime time = GST_BUFFER_PTS(buffer);
  const GstSegment& segment = element_->segment;
  if (segment.format != GST_FORMAT_TIME) return {.timestamp = time};
  return {time, gst_segment_to_stream_time(&segment, GST_FORMAT_TIME, time),
          gst_segment_to_running_time(&segment, GST_FORMAT_TIME, time)};
}

GstFlowReturn Analyser::frame(GstBuffer* buffer, const Handling& handling) {
  if (GST_BUFFER_FLAG_IS_SET(buffer, GST_BUFFER_FLAG_DISCONT) && frames_ > 0) restart(handling, "discont");
  if (frames_++ % handling.interval == 0) {
    const Moment moment = momentOf(buffer);
    if (!process(buffer, moment)) return GST_FLOW_ERROR;
    report(buffer, moment, handling);
  }
  if (handling.draw && !boxes_.empty()) draw(buffer);
  return GST_FLOW_OK;
}

bool Analyser::process(GstBuffer* buffer, const Moment& moment) {
  Mapped mapped(info_, buffer, GST_MAP_READ);
  if (!mapped.complete()) {
    GST_ELEMENT_ERROR(element_, STREAM, FORMAT, ("A buffer is smaller than its frame."), (nullptr));
    return false;
  }
  const gint64 time = GST_CLOCK_TIME_IS_VALID(moment.runningTime)
                          ? static_cast<gint64>(GST_TIME_AS_MSECONDS(moment.runningTime))
                          : -1;
  const lightmotion_box* boxes = nullptr;
  const int count =
      lightmotion_process(detector_.get(), GST_VIDEO_FRAME_PLANE_DATA(&mapped.frame(), 0),
                          static_cast<gsize>(GST_VIDEO_FRAME_PLANE_STRIDE(&mapped.frame(), 0)), time, &boxes);
  boxes_.clear();
  if (count < 0) {
    GST_ELEMENT_ERROR(element_, LIBRARY, FAILED, ("%s", lightmotion_error_text(count)), (nullptr));
    return false;
  }
  if (count > 0) boxes_.assign(boxes, boxes + count);
  return true;
}

void Analyser::report(GstBuffer* buffer, const Moment& moment, const Handling& handling) {
  attach(buffer, detector_.get(), boxes_);
  // Frames without timestamps use arrival time, as in the library.
  const GstClockTime now = GST_CLOCK_TIME_IS_VALID(moment.runningTime)
                               ? moment.runningTime
                               : static_cast<GstClockTime>(g_get_monotonic_time()) * GST_USECOND;
  const EventTracker::Step step = events_.frame(moment, now, !boxes_.empty(), holdOf(handling));
  if (handling.post == Post::none) return;
  auto* const element = GST_ELEMENT_CAST(element_);
  if (step.ended) postEnd(element, *step.ended, holdOf(handling), "quiet");
  if (step.begun) postBegin(element, *step.begun, holdOf(handling));
  if (handling.post == Post::all && !boxes_.empty()) postBoxes(element, moment, detector_.get(), boxes_);
}

void Analyser::draw(GstBuffer* buffer) {
  Mapped mapped(info_, buffer, GST_MAP_READWRITE);
  if (mapped.complete()) drawOutlines(mapped.frame(), boxes_);
}

void Analyser::restart(const Handling& handling, const char* reason) {
  endEvent(handling, reason);
  boxes_.clear();
  frames_ = 0;
  lightmotion_reset(detector_.get());
}

void Analyser::endEvent(const Handling& handling, const char* reason) {
  const std::optional<Event> ended = events_.interrupt();
  if (ended && handling.post != Post::none) {
    postEnd(GST_ELEMENT_CAST(element_), *ended, holdOf(handling), reason);
  }
}

void Analyser::stop(const Handling& handling) {
  restart(handling, "stop");
  detector_.reset();
}

}  // namespace lm::gst
