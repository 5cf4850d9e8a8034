// Who may talk to the server.
#pragma once

#include <optional>
#include <string>

namespace lm::host::commands::serve {

struct Gate {
  std::string host = "127.0.0.1";  // that the server listens on
  int port = 0;
  std::string token{};  // that every request for data has to bring; empty when none has to
};

// What a request says about where it comes from; empty for what it does not say.
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

// Whether an address is one that only this computer reaches.
bool is_loopback(const std::string& host);

// "127.0.0.1:8420", "[::1]:8420"
std::string authority(const std::string& host, int port);

// Why the request is turned away; nothing when it is let in. Pages of other sites are kept out though a
// browser on this computer would send their requests: they bring a foreign Origin, and those that have their
// own name lead here bring a foreign Host, which is of no use to them where a token is asked for.
// `needs_token`: not for the page itself, which holds no secrets.
std::optional<Turned> turned_away(const Gate& gate, const Credentials& shown, bool needs_token);

// 128 random bits as text. Throws Failure (kTrouble).
std::string random_token();

}  // namespace lm::host::commands::serve
