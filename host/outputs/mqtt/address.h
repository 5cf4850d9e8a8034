// The broker's address.
#pragma once

#include <string>

namespace lm::host::outputs::mqtt {

struct Address {
  bool encrypted = false;
  std::string user;  // empty: none
  std::string password;
  std::string host;
  int port = 1883;
  std::string prefix = "lightmotion";  // of all topics; may have several levels
};

// mqtt://[user[:password]@]host[:port][/prefix], or mqtts:// for an encrypted connection, with default port
// 8883. User and password may contain any character as %XX. Throws std::invalid_argument with the cause; the
// message never contains the password.
Address parse_address(const std::string& text);

// The address without user and password, for messages.
std::string shown(const Address& address);

}  // namespace lm::host::outputs::mqtt
