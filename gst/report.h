// What the element reports: metadata of buffers and messages on the bus.
#pragma once

#include <gst/gst.h>

#include <vector>

#include "gst/event.h"
#include "lightmotion/lightmotion.h"

namespace lm::gst {

using Boxes = std::vector<lightmotion_box>;

// `detector`: whose boxes they are, for the names of the regions. `buffer`: writable.
void attach(GstBuffer* buffer, const lightmotion_detector* detector, const Boxes& boxes);

void postBoxes(GstElement* element, const Moment& moment, const lightmotion_detector* detector,
               const Boxes& boxes);
void postBegin(GstElement* element, const Event& event, GstClockTime hold);
// `reason`: one of docs/gstreamer.md.
void postEnd(GstElement* element, const Event& event, GstClockTime hold, const char* reason);

}  // namespace lm::gst
