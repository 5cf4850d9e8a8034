// The element's properties.
#pragma once

#include <gst/gst.h>

#include <string>

namespace lm::gst {

// What decides the detector's configuration.
struct Settings {
  std::string config{};      // JSON text; empty: none
  std::string configFile{};  // a path; empty: none
  std::string regions{};     // in the syntax of regions_text.h; empty: those of the configuration
  int sensitivity = 0;       // 0: that of the configuration
  double minBox = 0;         // likewise
  double absorb = 0;         // seconds; likewise, and -1: for ever
};

enum class Post { none, events, all };

// What is read for every frame.
struct Handling {
  guint interval = 1;  // every n-th frame is analysed
  guint hold = 2000;   // milliseconds without boxes that end an event
  Post post = Post::all;
  bool draw = false;
};

struct Properties {
  Settings settings;
  Handling handling;
};

void installProperties(GObjectClass* type);

// Whether the settings may have changed. `id`: one that was installed.
bool setProperty(Properties& properties, guint id, const GValue* value);
void getProperty(const Properties& properties, guint id, GValue* value);

}  // namespace lm::gst
