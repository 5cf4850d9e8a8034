// What is said on the message bus about one camera, and where.
#pragma once

#include <string>

#include "host/outputs/mqtt/outbox.h"

namespace lm::host::outputs::mqtt {

inline constexpr const char* kOnline = "online";
inline constexpr const char* kOffline = "offline";
inline constexpr const char* kMotion = "ON";
inline constexpr const char* kNoMotion = "OFF";

// A name for topics from the source's: small letters, digits, - and _. Nothing of the account in a stream's
// address gets into it. "builtin" for the built-in scene, whose source is empty.
std::string camera_name(const std::string& source);

struct Topics {
  std::string camera;
  std::string base;  // <prefix>/<camera>

  Topics(const std::string& prefix, const std::string& camera_name)
      : camera(camera_name), base(prefix + "/" + camera_name) {}

  std::string availability() const { return base + "/availability"; }
  std::string motion() const { return base + "/motion"; }
  std::string event(const std::string& step) const { return base + "/event/" + step; }

  // A name of the camera that is the only one on its broker.
  std::string unique_id() const;
};

// Tells home-automation software that watches `discovery` that there is a motion sensor.
Message discovery_message(const std::string& discovery, const Topics& topics);

}  // namespace lm::host::outputs::mqtt
