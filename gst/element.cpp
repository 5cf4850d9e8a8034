// GStreamer's side: the class, its properties and the calls of the base class.
#include "gst/element.h"

#include <gst/base/gstbasetransform.h>
#include <gst/video/video.h>

#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "gst/analyser.h"
#include "gst/formats.h"
#include "gst/properties.h"

using lm::gst::Analyser;
using lm::gst::Handling;
using lm::gst::Properties;
using lm::gst::Settings;

namespace {

// Under the element's object lock.
struct Shared {
  Properties properties;
  std::string fileText;  // content of the configuration file
  bool started = false;
  bool changed = false;  // the settings, since the detector last took them
};

}  // namespace

struct GstLightmotion {
  GstBaseTransform parent;
  Shared* shared;
  Analyser* analyser;
};

struct GstLightmotionClass {
  GstBaseTransformClass parent;
};

G_DEFINE_TYPE(GstLightmotion, gst_lightmotion, GST_TYPE_BASE_TRANSFORM)
GST_ELEMENT_REGISTER_DEFINE(lightmotion, "lightmotion", GST_RANK_NONE, gst_lightmotion_get_type())

namespace {

GstStaticPadTemplate sinkTemplate = GST_STATIC_PAD_TEMPLATE(
    "sink", GST_PAD_SINK, GST_PAD_ALWAYS, GST_STATIC_CAPS(GST_VIDEO_CAPS_MAKE(LIGHTMOTION_GST_FORMATS)));
GstStaticPadTemplate sourceTemplate = GST_STATIC_PAD_TEMPLATE(
    "src", GST_PAD_SRC, GST_PAD_ALWAYS, GST_STATIC_CAPS(GST_VIDEO_CAPS_MAKE(LIGHTMOTION_GST_FORMATS)));

GstLightmotion* elementOf(void* instance) { return static_cast<GstLightmotion*>(instance); }

class Lock {
 public:
  explicit Lock(GstLightmotion* element) : element_(element) { GST_OBJECT_LOCK(element_); }
  ~Lock() { GST_OBJECT_UNLOCK(element_); }
  Lock(const Lock&) = delete;
  Lock& operator=(const Lock&) = delete;

 private:
  GstLightmotion* element_;
};

Handling handlingOf(GstLightmotion* element) {
  const Lock lock(element);
  return element->shared->properties.handling;
}

struct Wanted {
  Settings settings;
  std::string fileText;
};

Wanted takeSettings(GstLightmotion* element) {
  const Lock lock(element);
  element->shared->changed = false;
  return {element->shared->properties.settings, element->shared->fileText};
}

// The content of a configuration file, or none and the reason.
std::optional<std::string> contentOf(const std::string& path, std::string& fault) {
  if (path.empty()) return "";
  char* text = nullptr;
  gsize length = 0;
  GError* error = nullptr;
  if (g_file_get_contents(path.c_str(), &text, &length, &error) == FALSE) {
    fault = std::string("config-file: ") + error->message;
    g_error_free(error);
    return std::nullopt;
  }
  std::string content(text, length);
  g_free(text);
  return content;
}

// ---- life and properties ----------------------------------------------------------------------------------

void setProperty(GObject* object, guint id, const GValue* value, GParamSpec* /*property*/) {
  GstLightmotion* const element = elementOf(object);
  std::string path;
  {
    const Lock lock(element);
    Shared& shared = *element->shared;
    const std::string before = shared.properties.settings.configFile;
    if (lm::gst::setProperty(shared.properties, id, value)) shared.changed = true;
    path = shared.properties.settings.configFile;
    if (!shared.started || path == before) return;
  }
  // Here and not in the streaming thread, which must not wait for a disk.
  std::string fault;
  const std::optional<std::string> text = contentOf(path, fault);
  if (!text) {
    GST_ELEMENT_WARNING(element, RESOURCE, OPEN_READ, ("%s", fault.c_str()), (nullptr));
    return;
  }
  const Lock lock(element);
  element->shared->fileText = *text;
  element->shared->changed = true;
}

void getProperty(GObject* object, guint id, GValue* value, GParamSpec* /*property*/) {
  GstLightmotion* const element = elementOf(object);
  const Lock lock(element);
  lm::gst::getProperty(element->shared->properties, id, value);
}

void finalize(GObject* object) {
  GstLightmotion* const element = elementOf(object);
  delete element->analyser;
  delete element->shared;
  G_OBJECT_CLASS(gst_lightmotion_parent_class)->finalize(object);
}

gboolean start(GstBaseTransform* base) {
  GstLightmotion* const element = elementOf(base);
  std::string path;
  {
    const Lock lock(element);
    path = element->shared->properties.settings.configFile;
  }
  std::string fault;
  std::optional<std::string> text = contentOf(path, fault);
  if (!text) {
    GST_ELEMENT_ERROR(element, RESOURCE, OPEN_READ, ("%s", fault.c_str()), (nullptr));
    return FALSE;
  }
  const Lock lock(element);
  element->shared->fileText = std::move(*text);
  element->shared->started = true;
  return TRUE;
}

gboolean stop(GstBaseTransform* base) {
  GstLightmotion* const element = elementOf(base);
  element->analyser->stop(handlingOf(element));
  const Lock lock(element);
  element->shared->started = false;
  return TRUE;
}

// ---- the stream -------------------------------------------------------------------------------------------

gboolean setCaps(GstBaseTransform* base, GstCaps* caps, GstCaps* /*same*/) {
  GstLightmotion* const element = elementOf(base);
  GstVideoInfo info;
  if (gst_video_info_from_caps(&info, caps) == FALSE) return FALSE;
  element->analyser->setFormat(info, handlingOf(element));
  return TRUE;
}

gboolean sinkEvent(GstBaseTransform* base, GstEvent* event) {
  GstLightmotion* const element = elementOf(base);
  switch (GST_EVENT_TYPE(event)) {
    case GST_EVENT_FLUSH_STOP:
      element->analyser->restart(handlingOf(element), "flush");
      break;
    case GST_EVENT_STREAM_START:
      element->analyser->restart(handlingOf(element), "stream");
      break;
    case GST_EVENT_EOS:
      element->analyser->endEvent(handlingOf(element), "eos");
      break;
    default:
      break;
  }
  return GST_BASE_TRANSFORM_CLASS(gst_lightmotion_parent_class)->sink_event(base, event);
}

GstFlowReturn transformInPlace(GstBaseTransform* base, GstBuffer* buffer) {
  GstLightmotion* const element = elementOf(base);
  bool changed = false;
  Handling handling;
  {
    const Lock lock(element);
    changed = element->shared->changed;
    handling = element->shared->properties.handling;
  }
  if (!element->analyser->hasDetector()) {
    const Wanted wanted = takeSettings(element);
    if (!element->analyser->makeDetector(wanted.settings, wanted.fileText)) return GST_FLOW_ERROR;
  } else if (changed) {
    const Wanted wanted = takeSettings(element);
    element->analyser->change(wanted.settings, wanted.fileText);
  }
  return element->analyser->frame(buffer, handling);
}

}  // namespace

static void gst_lightmotion_init(GstLightmotion* element) {
  element->shared = new Shared;
  element->analyser = new Analyser(GST_BASE_TRANSFORM(element));
  gst_base_transform_set_in_place(GST_BASE_TRANSFORM(element), TRUE);
  gst_base_transform_set_gap_aware(GST_BASE_TRANSFORM(element), TRUE);
}

static void gst_lightmotion_class_init(GstLightmotionClass* type) {
  GObjectClass* const object = G_OBJECT_CLASS(type);
  object->set_property = setProperty;
  object->get_property = getProperty;
  object->finalize = finalize;
  lm::gst::installProperties(object);

  GstElementClass* const element = GST_ELEMENT_CLASS(type);
  gst_element_class_set_static_metadata(element, "Motion detector", "Filter/Analyzer/Video",
                                        "Finds what moves: boxes as metadata and messages",
                                        "lightmotion developers <developers@lightmotion.invalid>");
  gst_element_class_add_static_pad_template(element, &sinkTemplate);
  gst_element_class_add_static_pad_template(element, &sourceTemplate);

  GstBaseTransformClass* const transform = GST_BASE_TRANSFORM_CLASS(type);
  transform->start = start;
  transform->stop = stop;
  transform->set_caps = setCaps;
  transform->sink_event = sinkEvent;
  transform->transform_ip = transformInPlace;
}
