// An element in a harness, and the library beside it.
#pragma once

#include <gst/check/gstharness.h>
#include <gst/gst.h>
#include <gst/video/video.h>

#include <memory>
#include <string>
#include <vector>

#include "lightmotion/lightmotion.h"
#include "tests/gst/scene.h"

namespace lm::gst {

// x, y, width, height, and the names of the regions.
struct FoundBox {
  int x = 0, y = 0, width = 0, height = 0;
  std::vector<std::string> regions;
  bool operator==(const FoundBox&) const = default;
};
using FoundBoxes = std::vector<FoundBox>;

// An element with a source and a sink.
class Stream {
 public:
  // `properties`: as in a pipeline, such as "sensitivity=4 hold=100".
  explicit Stream(const std::string& properties = "");
  ~Stream();
  Stream(const Stream&) = delete;
  Stream& operator=(const Stream&) = delete;

  // Caps of the format, 25 frames per second.
  void setFormat(GstVideoFormat format, const Scene& scene = {});
  // Pushes a frame with the number's time and returns the boxes of its metadata. Takes the buffer.
  FoundBoxes push(GstBuffer* buffer, GstClockTime time);
  // A frame of the scene, in the format that was set.
  FoundBoxes frame(int number, bool discont = false);
  // The outgoing buffer of the last push; valid until the next one.
  GstBuffer* last() const { return last_.get(); }
  GstFlowReturn flow() const { return flow_; }

  void event(GstEvent* event) { gst_harness_push_event(harness_, event); }
  GstElement* element() const { return element_; }
  GstHarness* harness() const { return harness_; }

  struct Free {
    void operator()(GstMessage* message) const { gst_message_unref(message); }
  };
  using Message = std::unique_ptr<GstMessage, Free>;
  // The messages of one kind since the last call.
  std::vector<Message> messages(GstMessageType type);
  // The texts of errors or warnings since the last call.
  std::vector<std::string> texts(GstMessageType type);
  // Those named lightmotion whose `type` it is, as their structure's text.
  std::vector<std::string> reports(const std::string& type);

 private:
  struct Release {
    void operator()(GstBuffer* buffer) const { gst_buffer_unref(buffer); }
  };
  GstHarness* harness_;
  GstElement* element_;
  GstBus* bus_;
  Scene scene_;
  GstVideoFormat format_ = GST_VIDEO_FORMAT_UNKNOWN;
  GstFlowReturn flow_ = GST_FLOW_OK;
  std::unique_ptr<GstBuffer, Release> last_;
};

FoundBoxes boxesOf(GstBuffer* buffer);

// The library on the same frames.
class Library {
 public:
  explicit Library(GstVideoFormat format, int libraryFormat, const Scene& scene = {},
                   const char* config = nullptr);
  FoundBoxes frame(int number, int millisecondsPerFrame = 40);
  void change(const char* changes);

 private:
  struct Destroy {
    void operator()(lightmotion_detector* detector) const { lightmotion_destroy(detector); }
  };
  GstVideoFormat format_;
  Scene scene_;
  std::unique_ptr<lightmotion_detector, Destroy> detector_;
};

}  // namespace lm::gst
