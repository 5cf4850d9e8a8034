#include "host/outputs/mqtt/mqtt_options.h"

#include <CLI/CLI.hpp>
#include <cstdlib>
#include <stdexcept>

#include "host/base/failure.h"
#include "host/base/whole_file.h"

namespace lm::host::outputs::mqtt {
namespace {

std::string first_line(const std::string& path) {
  const std::string text = base::required_text(path);
  if (text.empty()) throw base::Failure(base::kRefused, path + ": the file is empty");
  std::string line = text.substr(0, text.find('\n'));
  if (line.ends_with('\r')) line.pop_back();
  return line;
}

std::string fault(const std::string& address) {
  try {
    parse_address(address);
    return "";
  } catch (const std::invalid_argument& error) {
    return error.what();
  }
}

// The name must be a single topic level that subscribers can address.
std::string camera_fault(const std::string& name) {
  return name.find_first_of("/+#") == std::string::npos ? "" : "must not contain /, + or #";
}

std::string discovery_fault(const std::string& topic) {
  return topic.find_first_of("+#") == std::string::npos ? "" : "must not contain + or #";
}

}  // namespace

void add_mqtt_options(CLI::App& run, MqttOptions& options) {
  const auto add = [&run](const char* name, std::string& value, const char* kind, const char* help) {
    return run.add_option(name, value, help)->type_name(kind)->group("MQTT");
  };
  const char* address =
      "Publish events to the broker at\nmqtt://[USER[:PASSWORD]@]HOST[:PORT][/PREFIX]\n(mqtts:// for an "
      "encrypted connection)";
  CLI::Option* broker = add("--mqtt", options.address, "ADDRESS", address)->check(fault);
  add("--mqtt-camera", options.camera, "NAME", "The camera's name in topics (default: made from the source)")
      ->check(camera_fault)
      ->needs(broker);
  add("--mqtt-password-file", options.password_file, "FILE",
      "Read the password from the first line of this file; an argument is visible in the process list")
      ->needs(broker);
  add("--mqtt-ca", options.authorities, "FILE", "Trust these certificates instead of the system's")
      ->needs(broker);
  add("--mqtt-discovery", options.discovery, "TOPIC",
      "Topic under which home-automation software discovers devices; \"\" turns it off (default "
      "homeassistant)")
      ->check(discovery_fault)
      ->needs(broker);
}

Address broker_address(const MqttOptions& options) {
  Address address = parse_address(options.address);
  const char* password = std::getenv("LIGHTMOTION_MQTT_PASSWORD");
  if (!options.password_file.empty()) {
    address.password = first_line(options.password_file);
  } else if (address.password.empty() && password != nullptr) {
    address.password = password;
  }
  return address;
}

}  // namespace lm::host::outputs::mqtt
