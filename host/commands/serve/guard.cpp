#include "host/commands/serve/guard.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cctype>

#include "host/base/failure.h"

namespace lm::host::commands::serve {
namespace {

std::string lower(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) { return std::tolower(c); });
  return text;
}

// Takes the same time wherever the strings differ.
bool same(const std::string& given, const std::string& secret) {
  unsigned difference = given.size() == secret.size() ? 0 : 1;
  for (std::size_t i = 0; i < secret.size(); ++i) {
    const char c = i < given.size() ? given[i] : '\0';
    difference |= static_cast<unsigned char>(c) ^ static_cast<unsigned char>(secret[i]);
  }
  return difference == 0;
}

bool names_this_computer(const Gate& gate, const std::string& host) {
  for (const std::string& name :
       {gate.host, std::string("localhost"), std::string("127.0.0.1"), std::string("::1")}) {
    const std::string whole = authority(name, gate.port);
    if (host == whole || (gate.port == 80 && host + ":80" == whole)) return true;
  }
  return false;
}

}  // namespace

bool is_loopback(const std::string& host) {
  const bool four = host.starts_with("127.") && host.find_first_not_of("0123456789.") == std::string::npos;
  return host == "localhost" || host == "::1" || four;
}

std::string authority(const std::string& host, int port) {
  const bool six = host.find(':') != std::string::npos;
  return (six ? "[" + host + "]" : host) + ":" + std::to_string(port);
}

std::optional<Turned> turned_away(const Gate& gate, const Credentials& shown, bool needs_token) {
  const std::string host = lower(shown.host);
  const std::string origin = lower(shown.origin);
  if (gate.token.empty() && !names_this_computer(gate, host)) {
    return Turned{403, "unexpected Host header \"" + shown.host + "\""};
  }
  if (!origin.empty() && origin != "http://" + host && origin != "https://" + host) {
    return Turned{403, "cross-origin request refused: " + shown.origin};
  }
  if (!shown.site.empty() && shown.site != "same-origin" && shown.site != "none") {
    return Turned{403, "cross-origin request refused"};
  }
  if (needs_token && !gate.token.empty() && !same(shown.authorization, "Bearer " + gate.token)) {
    return Turned{401, "missing or wrong token: open the address that lightmotion serve printed"};
  }
  return std::nullopt;
}

std::string random_token() {
  std::array<unsigned char, 16> bytes{};
  if (getentropy(bytes.data(), bytes.size()) != 0)
    throw base::Failure(base::kTrouble, "cannot read random numbers from the system");
  std::string text;
  for (const unsigned char byte : bytes) {
    constexpr char kDigits[] = "0123456789abcdef";
    text += kDigits[byte >> 4];
    text += kDigits[byte & 15];
  }
  return text;
}

}  // namespace lm::host::commands::serve
