#include "host/outputs/mqtt/topics.h"

#include <filesystem>

#include "host/base/json_text.h"
#include "host/base/shown_address.h"
#include "host/events/event_json.h"

namespace lm::host::outputs::mqtt {
namespace {

constexpr std::size_t kLongestName = 64;

constexpr const char* kConnected = "connected";
constexpr const char* kLost = "lost";
constexpr const char* kReconnecting = "reconnecting";
constexpr const char* kFrozen = "frozen";

// What identifies a stream: host, port and path. The query may contain a password.
std::string without_account(const std::string& address, std::size_t scheme_end) {
  std::string rest = address.substr(scheme_end + 3);
  rest.resize(std::min(rest.find_first_of("?#"), rest.size()));
  const std::size_t at = rest.substr(0, rest.find('/')).rfind('@');
  return at == std::string::npos ? rest : rest.substr(at + 1);
}

std::string cleaned(const std::string& text) {
  std::string name;
  for (const char c : text) {
    const bool capital = c >= 'A' && c <= 'Z';
    const bool good = (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '-';
    if (capital || good) {
      name += static_cast<char>(capital ? c - 'A' + 'a' : c);
    } else if (!name.empty() && !name.ends_with('_')) {
      name += '_';
    }
  }
  name.resize(std::min(name.size(), kLongestName));
  while (name.ends_with('_')) name.pop_back();
  return name.empty() ? "camera" : name;
}

// What all sensors of a camera have in common.
Json::Value device_of(const Topics& topics) {
  Json::Value sensor;
  sensor["device"]["identifiers"].append(topics.unique_id());
  sensor["device"]["name"] = topics.camera;
  sensor["origin"]["name"] = "lightmotion";
  sensor["origin"]["sw_version"] = LIGHTMOTION_PROGRAM_VERSION;
  return sensor;
}

}  // namespace

std::string camera_name(const std::string& source) {
  if (source.empty()) return "builtin";
  const std::size_t scheme = source.find("://");
  if (scheme != std::string::npos) return cleaned(without_account(base::shown_address(source), scheme));
  return cleaned(std::filesystem::path(source).stem().string());
}

std::string Topics::unique_id() const { return cleaned(base); }

Message motion_discovery(const std::string& discovery, const Topics& topics) {
  Json::Value sensor = device_of(topics);
  sensor["name"] = "Motion";
  sensor["unique_id"] = topics.unique_id();
  sensor["device_class"] = "motion";
  sensor["state_topic"] = topics.motion();
  sensor["payload_on"] = kMotion;
  sensor["payload_off"] = kNoMotion;
  sensor["availability_topic"] = topics.availability();
  sensor["payload_available"] = kOnline;
  sensor["payload_not_available"] = kOffline;
  sensor["json_attributes_topic"] = topics.event("end");
  return {MessageKind::kRetained, discovery + "/binary_sensor/" + topics.unique_id() + "/config",
          base::verbatim_json(sensor)};
}

// Without an availability of its own: it is about what makes the motion sensor unavailable.
Message camera_discovery(const std::string& discovery, const Topics& topics) {
  Json::Value sensor = device_of(topics);
  sensor["name"] = "Camera";
  sensor["unique_id"] = topics.unique_id() + "-camera";
  sensor["entity_category"] = "diagnostic";
  sensor["device_class"] = "enum";
  for (const char* state : {kConnected, kLost, kReconnecting, kFrozen, kUnknown})
    sensor["options"].append(state);
  sensor["state_topic"] = topics.camera_state();
  sensor["value_template"] = "{{ value_json.camera }}";
  sensor["json_attributes_topic"] = topics.camera_state();
  return {MessageKind::kRetained, discovery + "/sensor/" + topics.unique_id() + "/config",
          base::verbatim_json(sensor)};
}

const char* camera_text(source::CameraState state) {
  switch (state) {
    case source::CameraState::kConnected:
      return kConnected;
    case source::CameraState::kLost:
      return kLost;
    case source::CameraState::kReconnecting:
      return kReconnecting;
    case source::CameraState::kFrozen:
      return kFrozen;
  }
  return kUnknown;
}

std::string camera_payload(const std::string& camera, std::optional<events::WallTime> since,
                           const std::string& reason) {
  Json::Value value;
  value["camera"] = camera;
  if (since) value["since"] = base::utc_text(*since);
  value["reason"] = reason;
  return base::json_text(value);
}

}  // namespace lm::host::outputs::mqtt
