#include "gst/report.h"

#include <gst/video/gstvideometa.h>
#ifdef LIGHTMOTION_GST_ANALYTICS
#include <gst/analytics/analytics.h>
#endif

namespace lm::gst {
namespace {

void appendTo(GValue& array, GValue& value) { gst_value_array_append_and_take_value(&array, &value); }

// The names of the regions that the box touches.
GValue regionsOf(const lightmotion_detector* detector, const lightmotion_box& box) {
  GValue names = G_VALUE_INIT;
  gst_value_array_init(&names, static_cast<guint>(box.region_count));
  for (int i = 0; i < box.region_count; ++i) {
    GValue name = G_VALUE_INIT;
    g_value_init(&name, G_TYPE_STRING);
    g_value_set_string(&name, lightmotion_region_name(detector, box.regions[i]));
    appendTo(names, name);
  }
  return names;
}

void addTimes(GstStructure* fields, const Moment& moment) {
  gst_structure_set(fields, "timestamp", GST_TYPE_CLOCK_TIME, moment.timestamp, "stream-time",
                    GST_TYPE_CLOCK_TIME, moment.streamTime, "running-time", GST_TYPE_CLOCK_TIME,
                    moment.runningTime, nullptr);
}

GstStructure* messageOf(const char* type, const Moment& moment) {
  GstStructure* const fields = gst_structure_new("lightmotion", "type", G_TYPE_STRING, type, nullptr);
  addTimes(fields, moment);
  return fields;
}

// Takes the fields.
void post(GstElement* element, GstStructure* fields) {
  gst_element_post_message(element, gst_message_new_element(GST_OBJECT(element), fields));
}

#ifdef LIGHTMOTION_GST_ANALYTICS
void attachAnalytics(GstBuffer* buffer, GQuark type, const Boxes& boxes) {
  GstAnalyticsRelationMeta* relations = gst_buffer_get_analytics_relation_meta(buffer);
  if (relations == nullptr) relations = gst_buffer_add_analytics_relation_meta(buffer);
  for (const lightmotion_box& box : boxes) {
    GstAnalyticsODMtd made;
    gst_analytics_relation_meta_add_od_mtd(relations, type, box.x, box.y, box.width, box.height, 1.0F, &made);
  }
}
#endif

}  // namespace

void attach(GstBuffer* buffer, const lightmotion_detector* detector, const Boxes& boxes) {
  if (boxes.empty()) return;
  const GQuark type = g_quark_from_static_string("lightmotion");
  int id = 0;
  for (const lightmotion_box& box : boxes) {
    GstVideoRegionOfInterestMeta* const meta = gst_buffer_add_video_region_of_interest_meta_id(
        buffer, type, static_cast<guint>(box.x), static_cast<guint>(box.y), static_cast<guint>(box.width),
        static_cast<guint>(box.height));
    meta->id = id++;
    GstStructure* const parameters = gst_structure_new_empty("lightmotion");
    GValue regions = regionsOf(detector, box);
    gst_structure_take_value(parameters, "regions", &regions);
    gst_video_region_of_interest_meta_add_param(meta, parameters);
  }
#ifdef LIGHTMOTION_GST_ANALYTICS
  attachAnalytics(buffer, type, boxes);
#endif
}

void postBoxes(GstElement* element, const Moment& moment, const lightmotion_detector* detector,
               const Boxes& boxes) {
  GValue list = G_VALUE_INIT;
  gst_value_array_init(&list, static_cast<guint>(boxes.size()));
  for (const lightmotion_box& box : boxes) {
    GstStructure* const fields =
        gst_structure_new("box", "x", G_TYPE_INT, box.x, "y", G_TYPE_INT, box.y, "width", G_TYPE_INT,
                          box.width, "height", G_TYPE_INT, box.height, nullptr);
    GValue regions = regionsOf(detector, box);
    gst_structure_take_value(fields, "regions", &regions);
    GValue value = G_VALUE_INIT;
    g_value_init(&value, GST_TYPE_STRUCTURE);
    g_value_take_boxed(&value, fields);
    appendTo(list, value);
  }
  GstStructure* const message = messageOf("boxes", moment);
  gst_structure_take_value(message, "boxes", &list);
  post(element, message);
}

void postBegin(GstElement* element, const Event& event, GstClockTime hold) {
  GstStructure* const message = messageOf("event-begin", event.begin);
  gst_structure_set(message, "event", G_TYPE_UINT64, event.number, "hold", GST_TYPE_CLOCK_TIME, hold,
                    nullptr);
  post(element, message);
}

void postEnd(GstElement* element, const Event& event, GstClockTime hold, const char* reason) {
  GstStructure* const message = messageOf("event-end", event.end);
  gst_structure_set(message, "event", G_TYPE_UINT64, event.number, "hold", GST_TYPE_CLOCK_TIME, hold,
                    "duration", GST_TYPE_CLOCK_TIME, event.endedAt - event.beganAt, "frames", G_TYPE_UINT64,
                    event.frames, "reason", G_TYPE_STRING, reason, nullptr);
  post(element, message);
}

}  // namespace lm::gst
