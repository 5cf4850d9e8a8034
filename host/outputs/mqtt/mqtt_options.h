// Command-line options of MQTT.
#pragma once

#include <string>

#include "host/outputs/mqtt/address.h"

namespace CLI {
class App;
}

namespace lm::host::outputs::mqtt {

// An empty text: not given.
struct MqttOptions {
  std::string address{};                    // as in parse_address; no MQTT if empty
  std::string camera{};                     // camera name in topics; derived from the source if empty
  std::string password_file{};              // the first line is the password
  std::string authorities{};                // CA certificates for encrypted connections
  std::string discovery = "homeassistant";  // topic prefix of home-automation discovery
};

void add_mqtt_options(CLI::App& run, MqttOptions& options);

// The broker's address with the password from the file, else from the address, else from the environment
// variable LIGHTMOTION_MQTT_PASSWORD. Throws Failure (kRefused).
Address broker_address(const MqttOptions& options);

}  // namespace lm::host::outputs::mqtt
