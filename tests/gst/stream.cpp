#include "tests/gst/stream.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <mutex>
#include <stdexcept>

namespace lm::gst {
namespace {

// Only the plug-in under test is loaded: nothing else of the machine's GStreamer is searched.
void prepare() {
  static std::once_flag once;
  std::call_once(once, [] {
    setenv("GST_PLUGIN_SYSTEM_PATH_1_0", "", 1);
    setenv("GST_PLUGIN_PATH_1_0", "", 1);
    setenv("GST_REGISTRY_1_0", GST_REGISTRY_FILE, 1);
    gst_init(nullptr, nullptr);
    g_log_set_always_fatal(static_cast<GLogLevelFlags>(G_LOG_FATAL_MASK | G_LOG_LEVEL_CRITICAL));
    GError* error = nullptr;
    if (gst_plugin_load_file(GST_PLUGIN_FILE, &error) == nullptr) throw std::runtime_error(error->message);
  });
}

std::vector<std::string> namesIn(const GstStructure* fields) {
  const GValue* const names = gst_structure_get_value(fields, "regions");
  std::vector<std::string> found;
  for (guint i = 0; i < gst_value_array_get_size(names); ++i) {
    found.emplace_back(g_value_get_string(gst_value_array_get_value(names, i)));
  }
  return found;
}

}  // namespace

FoundBoxes boxesOf(GstBuffer* buffer) {
  FoundBoxes found;
  void* state = nullptr;
  while (auto* const meta = reinterpret_cast<GstVideoRegionOfInterestMeta*>(
             gst_buffer_iterate_meta_filtered(buffer, &state, GST_VIDEO_REGION_OF_INTEREST_META_API_TYPE))) {
    EXPECT_STREQ(g_quark_to_string(meta->roi_type), "lightmotion");
    EXPECT_EQ(meta->id, static_cast<int>(found.size()));
    found.push_back({static_cast<int>(meta->x), static_cast<int>(meta->y), static_cast<int>(meta->w),
                     static_cast<int>(meta->h),
                     namesIn(gst_video_region_of_interest_meta_get_param(meta, "lightmotion"))});
  }
  return found;
}

Stream::Stream(const std::string& properties) {
  prepare();
  harness_ = gst_harness_new_parse(("lightmotion " + properties).c_str());
  // A harness puts what it parsed into a bin when it is not one element.
  element_ = gst_harness_find_element(harness_, "lightmotion");
  bus_ = gst_bus_new();
  gst_element_set_bus(harness_->element, bus_);
}

Stream::~Stream() {
  last_.reset();
  gst_element_set_bus(harness_->element, nullptr);
  gst_object_unref(bus_);
  gst_object_unref(element_);
  gst_harness_teardown(harness_);
}

void Stream::setFormat(GstVideoFormat format, const Scene& scene) {
  format_ = format;
  scene_ = scene;
  GstCaps* const caps = gst_caps_new_simple(
      "video/x-raw", "format", G_TYPE_STRING, gst_video_format_to_string(format), "width", G_TYPE_INT,
      scene.width, "height", G_TYPE_INT, scene.height, "framerate", GST_TYPE_FRACTION, 25, 1, nullptr);
  gst_harness_set_src_caps(harness_, caps);
}

FoundBoxes Stream::push(GstBuffer* buffer, GstClockTime time) {
  GST_BUFFER_PTS(buffer) = time;
  last_.reset();
  flow_ = gst_harness_push(harness_, buffer);
  if (flow_ != GST_FLOW_OK) return {};
  last_.reset(gst_harness_pull(harness_));
  return boxesOf(last());
}

FoundBoxes Stream::frame(int number, bool discont) {
  GstBuffer* const buffer = bufferOf(scene_, format_, number);
  if (discont) GST_BUFFER_FLAG_SET(buffer, GST_BUFFER_FLAG_DISCONT);
  return push(buffer, static_cast<GstClockTime>(number) * sceneInterval);
}

std::vector<Stream::Message> Stream::messages(GstMessageType type) {
  std::vector<Message> found;
  while (GstMessage* const message = gst_bus_pop_filtered(bus_, type)) found.emplace_back(message);
  return found;
}

std::vector<std::string> Stream::texts(GstMessageType type) {
  std::vector<std::string> found;
  for (const Message& message : messages(type)) {
    GError* error = nullptr;
    if (type == GST_MESSAGE_ERROR) gst_message_parse_error(message.get(), &error, nullptr);
    if (type == GST_MESSAGE_WARNING) gst_message_parse_warning(message.get(), &error, nullptr);
    found.emplace_back(error->message);
    g_error_free(error);
  }
  return found;
}

std::vector<std::string> Stream::reports(const std::string& type) {
  std::vector<std::string> found;
  for (const Message& message : messages(GST_MESSAGE_ELEMENT)) {
    const GstStructure* const fields = gst_message_get_structure(message.get());
    EXPECT_STREQ(gst_structure_get_name(fields), "lightmotion");
    EXPECT_EQ(GST_MESSAGE_SRC(message.get()), GST_OBJECT(element_));
    if (type != gst_structure_get_string(fields, "type")) continue;
    char* const text = gst_structure_to_string(fields);
    found.emplace_back(text);
    g_free(text);
  }
  return found;
}

Library::Library(GstVideoFormat format, int libraryFormat, const Scene& scene, const char* config)
    : format_(format), scene_(scene) {
  char message[512];
  detector_.reset(
      lightmotion_create_for(config, scene.width, scene.height, libraryFormat, message, sizeof message));
  if (!detector_) throw std::runtime_error(message);
}

FoundBoxes Library::frame(int number, int millisecondsPerFrame) {
  const std::vector<std::uint8_t> pixels = pixelsOf(scene_, format_, number);
  const lightmotion_box* boxes = nullptr;
  const int count =
      lightmotion_process(detector_.get(), pixels.data(), 0, gint64{number} * millisecondsPerFrame, &boxes);
  FoundBoxes found;
  for (int i = 0; i < count; ++i) {
    found.push_back({boxes[i].x, boxes[i].y, boxes[i].width, boxes[i].height, {}});
    for (int j = 0; j < boxes[i].region_count; ++j) {
      found.back().regions.emplace_back(lightmotion_region_name(detector_.get(), boxes[i].regions[j]));
    }
  }
  return found;
}

void Library::change(const char* changes) {
  ASSERT_EQ(lightmotion_change(detector_.get(), changes, nullptr, 0), LIGHTMOTION_OK);
}

}  // namespace lm::gst
