// Boxes as detected objects, where GStreamer knows them (1.24).
#ifdef LIGHTMOTION_GST_ANALYTICS
#include <gst/analytics/analytics.h>
#include <gtest/gtest.h>

#include "tests/gst/stream.h"

namespace lm::gst {
namespace {

FoundBoxes objectsOf(GstBuffer* buffer) {
  FoundBoxes found;
  GstAnalyticsRelationMeta* const relations = gst_buffer_get_analytics_relation_meta(buffer);
  if (relations == nullptr) return found;
  void* state = nullptr;
  GstAnalyticsODMtd object;
  while (
      gst_analytics_relation_meta_iterate(relations, &state, gst_analytics_od_mtd_get_mtd_type(), &object)) {
    EXPECT_STREQ(g_quark_to_string(gst_analytics_od_mtd_get_obj_type(&object)), "lightmotion");
    FoundBox box;
    float confidence = 0;
    EXPECT_TRUE(
        gst_analytics_od_mtd_get_location(&object, &box.x, &box.y, &box.width, &box.height, &confidence));
    EXPECT_EQ(confidence, 1.0F);
    found.push_back(box);
  }
  return found;
}

TEST(GstAnalytics, ObjectsAreTheBoxes) {
  Stream stream;
  stream.setFormat(GST_VIDEO_FORMAT_GRAY8);
  std::size_t objects = 0;
  for (int i = 0; i < 25; ++i) {
    FoundBoxes boxes = stream.frame(i);
    for (FoundBox& box : boxes) box.regions.clear();
    EXPECT_EQ(objectsOf(stream.last()), boxes) << i;
    objects += boxes.size();
  }
  EXPECT_GT(objects, 15U);
}

}  // namespace
}  // namespace lm::gst
#endif
