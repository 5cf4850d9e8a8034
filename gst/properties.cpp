#include "gst/properties.h"

namespace lm::gst {
namespace {

enum Id : guint {
  idConfig = 1,
  idConfigFile,
  idRegions,
  idSensitivity,
  idMinBox,
  idAbsorb,
  idInterval,
  idHold,
  idPostMessages,
  idDraw
};

constexpr double longestAbsorption = 86400;  // seconds
const Properties defaults;

GType typeOfPost() {
  static const GEnumValue values[] = {{static_cast<int>(Post::none), "No messages", "none"},
                                      {static_cast<int>(Post::events), "Begin and end of events", "events"},
                                      {static_cast<int>(Post::all), "Events, and the boxes of frames", "all"},
                                      {0, nullptr, nullptr}};
  static const GType type = g_enum_register_static("GstLightmotionPostMessages", values);
  return type;
}

std::string textOf(const GValue* value) {
  const char* text = g_value_get_string(value);
  return text == nullptr ? "" : text;
}

void setText(GValue* value, const std::string& text) {
  g_value_set_string(value, text.empty() ? nullptr : text.c_str());
}

}  // namespace

void installProperties(GObjectClass* type) {
  constexpr auto setup = static_cast<GParamFlags>(G_PARAM_READWRITE | G_PARAM_STATIC_STRINGS);
  constexpr auto flags = static_cast<GParamFlags>(setup | GST_PARAM_MUTABLE_PLAYING);
  const auto install = [&](Id id, GParamSpec* property) {
    g_object_class_install_property(type, id, property);
  };
  install(idConfig,
          g_param_spec_string("config", "Configuration",
                              "Configuration of the detector: a JSON object. Its keys replace those "
                              "of config-file",
                              nullptr, flags));
  install(idConfigFile, g_param_spec_string("config-file", "Configuration file",
                                            "File with the configuration, read when it is set and when the "
                                            "element starts",
                                            nullptr, flags));
  install(idRegions,
          g_param_spec_string("regions", "Regions",
                              "NAME: X,Y X,Y X,Y; !NAME: X,Y ... (!: excluded), in fractions of the "
                              "frame. Replaces roi and ror of the configuration",
                              nullptr, flags));
  install(idSensitivity,
          g_param_spec_int("sensitivity", "Sensitivity",
                           "1 (least) to 5 (most); -1: automatic; 0: that of the configuration", -1, 5,
                           defaults.settings.sensitivity, flags));
  install(idMinBox,
          g_param_spec_double("min-box", "Minimum box size",
                              "Fraction of the frame's width and height; a box below both is dropped. "
                              "0: that of the configuration",
                              0, 1, defaults.settings.minBox, flags));
  install(idAbsorb,
          g_param_spec_double("absorb", "Absorption time",
                              "Seconds for which something that stands still stays foreground, 0.1 or "
                              "more; -1: for ever; 0: that of the configuration",
                              -1, longestAbsorption, defaults.settings.absorb, flags));
  install(idInterval, g_param_spec_uint("interval", "Interval", "Analyse every n-th frame", 1, G_MAXINT,
                                        defaults.handling.interval, flags));
  install(idHold,
          g_param_spec_uint("hold", "Hold time", "Milliseconds without boxes after which an event ends", 0,
                            G_MAXUINT, defaults.handling.hold, flags));
  install(idPostMessages, g_param_spec_enum("post-messages", "Post messages", "Which messages to post",
                                            typeOfPost(), static_cast<int>(defaults.handling.post), flags));
  install(idDraw, g_param_spec_boolean("draw", "Draw", "Outline the boxes in the frames",
                                       defaults.handling.draw, flags));
}

bool setProperty(Properties& properties, guint id, const GValue* value) {
  Settings& settings = properties.settings;
  Handling& handling = properties.handling;
  switch (id) {
    case idConfig:
      settings.config = textOf(value);
      return true;
    case idConfigFile:
      settings.configFile = textOf(value);
      return true;
    case idRegions:
      settings.regions = textOf(value);
      return true;
    case idSensitivity:
      settings.sensitivity = g_value_get_int(value);
      return true;
    case idMinBox:
      settings.minBox = g_value_get_double(value);
      return true;
    case idAbsorb:
      settings.absorb = g_value_get_double(value);
      return true;
    case idInterval:
      handling.interval = g_value_get_uint(value);
      return false;
    case idHold:
      handling.hold = g_value_get_uint(value);
      return false;
    case idPostMessages:
      handling.post = static_cast<Post>(g_value_get_enum(value));
      return false;
    default:
      handling.draw = g_value_get_boolean(value) != FALSE;
      return false;
  }
}

void getProperty(const Properties& properties, guint id, GValue* value) {
  const Settings& settings = properties.settings;
  const Handling& handling = properties.handling;
  switch (id) {
    case idConfig:
      return setText(value, settings.config);
    case idConfigFile:
      return setText(value, settings.configFile);
    case idRegions:
      return setText(value, settings.regions);
    case idSensitivity:
      return g_value_set_int(value, settings.sensitivity);
    case idMinBox:
      return g_value_set_double(value, settings.minBox);
    case idAbsorb:
      return g_value_set_double(value, settings.absorb);
    case idInterval:
      return g_value_set_uint(value, handling.interval);
    case idHold:
      return g_value_set_uint(value, handling.hold);
    case idPostMessages:
      return g_value_set_enum(value, static_cast<int>(handling.post));
    default:
      return g_value_set_boolean(value, handling.draw ? TRUE : FALSE);
  }
}

}  // namespace lm::gst
