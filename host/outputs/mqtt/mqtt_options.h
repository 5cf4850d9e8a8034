// Options of MQTT on the command line.
#pragma once

#include <string>

#include "host/outputs/mqtt/address.h"

namespace CLI {
class App;
}

namespace lm::host::outputs::mqtt {

// An empty text: not given.
struct MqttOptions {
  std::string address{};                    // of mqtt::parse_address; no MQTT when empty
  std::string camera{};                     // its name in topics; made from the source when empty
  std::string password_file{};              // the password is its first line
  std::string authorities{};                // certificates that an encrypted connection trusts
  std::string discovery = "homeassistant";  // topic prefix that home-automation software watches
};

void add_mqtt_options(CLI::App& run, MqttOptions& options);

// Where to connect, with the password from the file, else from the address, else from the environment
// variable LIGHTMOTION_MQTT_PASSWORD. Throws Failure (kRefused).
Address broker_address(const MqttOptions& options);

}  // namespace lm::host::outputs::mqtt
