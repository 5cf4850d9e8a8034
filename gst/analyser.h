// What an element does with frames: it owns the detector and the event in progress.
#pragma once

#include <gst/base/gstbasetransform.h>
#include <gst/video/video.h>

#include <memory>
#include <optional>
#include <string>

#include "gst/configuration.h"
#include "gst/event.h"
#include "gst/properties.h"
#include "gst/report.h"
#include "lightmotion/lightmotion.h"

namespace lm::gst {

// Used by the streaming thread, or while there is none. Errors and warnings are posted by the element.
class Analyser {
 public:
  // `element` owns this.
  explicit Analyser(GstBaseTransform* element) : element_(element) {}

  // New caps: the next frame needs a new detector.
  void setFormat(const GstVideoInfo& info, const Handling& handling);

  bool hasDetector() const { return detector_ != nullptr; }
  // False if the configuration is refused.
  bool makeDetector(const Settings& settings, const std::string& fileText);

  // Changes a detector that is running. What is refused is a warning, and the previous settings stay.
  void change(const Settings& settings, const std::string& fileText);

  // Requires a detector. `buffer`: writable.
  GstFlowReturn frame(GstBuffer* buffer, const Handling& handling);

  // The next frame does not follow the last one: forgets what was learned and ends the event.
  void restart(const Handling& handling, const char* reason);

  // Ends the event that is in progress.
  void endEvent(const Handling& handling, const char* reason);

  // Frees the detector.
  void stop(const Handling& handling);

 private:
  struct Destroy {
    void operator()(lightmotion_detector* detector) const { lightmotion_destroy(detector); }
  };

  Moment momentOf(const GstBuffer* buffer) const;
  bool process(GstBuffer* buffer, const Moment& moment);
  void report(GstBuffer* buffer, const Moment& moment, const Handling& handling);
  void draw(GstBuffer* buffer);

  GstBaseTransform* element_;
  std::unique_ptr<lightmotion_detector, Destroy> detector_;
  std::optional<Json::Value> inForce_;  // the detector's configuration
  GstVideoInfo info_{};
  guint64 frames_ = 0;  // since the last restart
  Boxes boxes_;  // of the last analysed frame; their regions are valid until the next call of the library
  EventTracker events_;
};

}  // namespace lm::gst
