// The plug-in that holds the element.
#include <gst/gst.h>

#include "gst/element.h"

static gboolean registerElements(GstPlugin* plugin) { return GST_ELEMENT_REGISTER(lightmotion, plugin); }

#define PACKAGE "lightmotion"
GST_PLUGIN_DEFINE(GST_VERSION_MAJOR, GST_VERSION_MINOR, lightmotion, "Motion detection for video",
                  registerElements, LIGHTMOTION_VERSION_TEXT, "Proprietary", "lightmotion",
                  "https://lightmotion.invalid")
