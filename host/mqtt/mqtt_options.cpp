#include "host/mqtt/mqtt_options.h"

#include <CLI/CLI.hpp>
#include <cstdlib>
#include <stdexcept>

#include "host/failure.h"
#include "host/whole_file.h"

namespace lm::host {
namespace {

std::string first_line(const std::string& path) {
  const std::string text = required_text(path);
  if (text.empty()) throw Failure(kRefused, path + ": is empty");
  std::string line = text.substr(0, text.find('\n'));
  if (line.ends_with('\r')) line.pop_back();
  return line;
}

std::string fault(const std::string& address) {
  try {
    mqtt::parse_address(address);
    return "";
  } catch (const std::invalid_argument& error) {
    return error.what();
  }
}

// One level of a topic that others can read.
std::string camera_fault(const std::string& name) {
  return name.find_first_of("/+#") == std::string::npos ? "" : "must not hold /, + or #";
}

std::string discovery_fault(const std::string& topic) {
  return topic.find_first_of("+#") == std::string::npos ? "" : "must not hold + or #";
}

}  // namespace

void add_mqtt_options(CLI::App& run, MqttOptions& options) {
  const auto add = [&run](const char* name, std::string& value, const char* kind, const char* help) {
    return run.add_option(name, value, help)->type_name(kind)->group("Message bus");
  };
  const char* address =
      "Tell events to the broker at mqtt://[USER[:PASSWORD]@]HOST[:PORT][/PREFIX]\n(mqtts: encrypted)";
  CLI::Option* bus = add("--mqtt", options.address, "ADDRESS", address)->check(fault);
  add("--mqtt-camera", options.camera, "NAME", "The camera's name in topics")
      ->check(camera_fault)
      ->needs(bus);
  add("--mqtt-password-file", options.password_file, "FILE", "The password, kept out of the process list")
      ->needs(bus);
  add("--mqtt-ca", options.authorities, "FILE", "Certificates to trust, instead of the system's")->needs(bus);
  add("--mqtt-discovery", options.discovery, "TOPIC",
      "Where home-automation software looks for devices;\nempty for nowhere")
      ->check(discovery_fault)
      ->capture_default_str()
      ->needs(bus);
}

mqtt::Address broker_address(const MqttOptions& options) {
  mqtt::Address address = mqtt::parse_address(options.address);
  const char* password = std::getenv("LIGHTMOTION_MQTT_PASSWORD");
  if (!options.password_file.empty()) {
    address.password = first_line(options.password_file);
  } else if (address.password.empty() && password != nullptr) {
    address.password = password;
  }
  return address;
}

}  // namespace lm::host
