// Access control of the server.
#pragma once

#include <optional>
#include <string>

namespace lm::host::commands::serve {

struct Gate {
  std::string host = "127.0.0.1";  // the address that the server listens on
  int port = 0;
  std::string token{};  // required in every request for data; empty if not required
};

// What a request states about its origin; empty if not stated.
struct Credentials {
  std::string host{};
  std::string origin{};
  std::string site{};  // Sec-Fetch-Site
  std::string authorization{};
};

struct Turned {
  int status;
  std::string reason;
};

// Whether the address is reachable from this computer only.
bool is_loopback(const std::string& host);

// "127.0.0.1:8420", "[::1]:8420"
std::string authority(const std::string& host, int port);

// Why the request is refused; none if it is accepted. Pages of other sites are refused although a browser on
// this computer would send their requests: they have a foreign Origin, or a foreign Host if they point their
// own name here (DNS rebinding). A required token makes checking the Host unnecessary. `needs_token`: false
// for the page itself, which holds no secrets.
std::optional<Turned> turned_away(const Gate& gate, const Credentials& shown, bool needs_token);

// 128 random bits as text. Throws Failure (kTrouble).
std::string random_token();

}  // namespace lm::host::commands::serve
