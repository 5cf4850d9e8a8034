// The MQTT topics of one camera and the messages on them.
#pragma once

#include <optional>
#include <string>

#include "host/events/event.h"
#include "host/outputs/mqtt/outbox.h"
#include "host/source/source.h"

namespace lm::host::outputs::mqtt {

inline constexpr const char* kOnline = "online";
inline constexpr const char* kOffline = "offline";
inline constexpr const char* kMotion = "ON";
inline constexpr const char* kNoMotion = "OFF";
inline constexpr const char* kUnknown = "unknown";  // of a camera that no program watches

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
  std::string camera_state() const { return base + "/camera"; }
  std::string event(const std::string& step) const { return base + "/event/" + step; }

  // A camera name that is unique on its broker.
  std::string unique_id() const;
};

// Announces a motion sensor to home-automation software that subscribes to `discovery`.
Message motion_discovery(const std::string& discovery, const Topics& topics);

// Announces the camera's state as a sensor for diagnosis.
Message camera_discovery(const std::string& discovery, const Topics& topics);

// "connected", "lost", ...
const char* camera_text(source::CameraState state);

// The payload about a camera in that state, or kUnknown.
std::string camera_payload(const std::string& camera, std::optional<events::WallTime> since,
                           const std::string& reason);

}  // namespace lm::host::outputs::mqtt
