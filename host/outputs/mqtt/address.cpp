#include "host/outputs/mqtt/address.h"

#include <charconv>
#include <stdexcept>
#include <string_view>
#include <system_error>

namespace lm::host::outputs::mqtt {
namespace {

[[noreturn]] void refuse(const std::string& text) { throw std::invalid_argument(text); }

template <typename Number>
bool read_number(std::string_view text, int base, Number& number) {
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, base);
  return error == std::errc() && end == text.data() + text.size();
}

std::string decoded(std::string_view text) {
  std::string result;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '%') {
      result += text[i];
      continue;
    }
    unsigned char code = 0;
    if (i + 2 >= text.size() || !read_number(text.substr(i + 1, 2), 16, code) || code == 0) {
      refuse("% in the user or password must be followed by two hexadecimal digits (% itself is %25)");
    }
    result += static_cast<char>(code);
    i += 2;
  }
  return result;
}

// Removes and returns the text before `mark`; also removes the mark.
std::string_view cut_before(std::string_view& text, std::size_t mark) {
  const std::string_view before = text.substr(0, mark);
  text.remove_prefix(mark + 1);
  return before;
}

void read_account(std::string_view account, Address& address) {
  const std::size_t colon = account.find(':');
  address.user = decoded(account.substr(0, colon));
  if (colon != std::string_view::npos) address.password = decoded(account.substr(colon + 1));
}

// An IPv6 address is in brackets, because it contains colons.
void read_host(std::string_view text, Address& address) {
  std::string_view port;
  if (text.starts_with('[')) {
    text.remove_prefix(1);
    const std::size_t bracket = text.find(']');
    if (bracket == std::string_view::npos) refuse("the ] after the address is missing");
    address.host = cut_before(text, bracket);
    port = text;
    if (!port.empty() && !port.starts_with(':')) refuse("only :PORT may follow the ]");
  } else {
    const std::size_t colon = text.find(':');
    address.host = text.substr(0, colon);
    if (colon != std::string_view::npos) port = text.substr(colon);
  }
  if (address.host.empty()) refuse("the broker's host name is missing");
  if (port.empty()) return;
  if (!read_number(port.substr(1), 10, address.port) || address.port < 1 || address.port > 65535) {
    refuse("the port must be a number from 1 to 65535");
  }
}

void read_prefix(std::string_view prefix, Address& address) {
  while (prefix.ends_with('/')) prefix.remove_suffix(1);
  if (prefix.empty()) return;
  if (prefix.find_first_of("+#") != std::string_view::npos)
    refuse("the topic prefix must not contain + or #");
  address.prefix = prefix;
}

}  // namespace

Address parse_address(const std::string& text) {
  Address address;
  std::string_view rest = text;
  if (rest.starts_with("mqtts://")) {
    address.encrypted = true;
    address.port = 8883;
    rest.remove_prefix(8);
  } else if (rest.starts_with("mqtt://")) {
    rest.remove_prefix(7);
  } else {
    refuse("must start with mqtt:// or mqtts://");
  }
  const std::size_t slash = rest.find('/');
  if (slash != std::string_view::npos) read_prefix(rest.substr(slash + 1), address);
  std::string_view authority = rest.substr(0, slash);
  // The last @, because it is often not encoded in passwords.
  if (const std::size_t at = authority.rfind('@'); at != std::string_view::npos) {
    read_account(cut_before(authority, at), address);
  }
  read_host(authority, address);
  return address;
}

std::string shown(const Address& address) {
  const bool brackets = address.host.find(':') != std::string::npos;
  return std::string(address.encrypted ? "mqtts://" : "mqtt://") + (brackets ? "[" : "") + address.host +
         (brackets ? "]:" : ":") + std::to_string(address.port);
}

}  // namespace lm::host::outputs::mqtt
