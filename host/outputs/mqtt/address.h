// Where the broker is.
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

// mqtt://[user[:password]@]host[:port][/prefix], or mqtts:// for an encrypted connection, whose usual port is
// 8883. User and password may hold any character as %XX. Throws std::invalid_argument saying what is wrong
// with it; the message never holds the password.
Address parse_address(const std::string& text);

// As parse_address takes it, without user and password: for messages.
std::string shown(const Address& address);

}  // namespace lm::host::outputs::mqtt
