// The element `lightmotion`.
#pragma once

#include <gst/gst.h>

G_BEGIN_DECLS

GST_ELEMENT_REGISTER_DECLARE(lightmotion)

G_END_DECLS
