// The MQTT topics of one camera and the messages on them.
#pragma once

#include <string>

#include "host/outputs/mqtt/outbox.h"

namespace lm::host::outputs::mqtt {

inline constexpr const char* kOnline = "online";
inline constexpr const char* kOffline = "offline";
inline constexpr const char* kMotion = "ON";
inline constexpr const char* kNoMotion = "OFF";

// A topic level made from the source's name: lowercase letters, digits, - and _. The account of a stream
// address is left out. "builtin" for the built-in scene (an empty source).
std::string camera_name(const std::string& source);

struct Topics {
  std::string camera;
  std::string base;  // <prefix>/<camera>

  Topics(const std::string& prefix, const std::string& camera_name)
      : camera(camera_name), base(prefix + "/" + camera_name) {}

  std::string availability() const { return base + "/availability"; }
  std::string motion() const { return base + "/motion"; }
  std::string event(const std::string& step) const { return base + "/event/" + step; }

  // A camera name that is unique on its broker.
  std::string unique_id() const;
};

// Announces a motion sensor to home-automation software that subscribes to `discovery`.
Message discovery_message(const std::string& discovery, const Topics& topics);

}  // namespace lm::host::outputs::mqtt
