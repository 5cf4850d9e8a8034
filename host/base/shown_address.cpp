#include "host/base/shown_address.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <string_view>

namespace lm::host::base {
namespace {

constexpr std::string_view kHidden = "***";

// Substrings of the query parameters in which cameras take passwords.
constexpr std::array<std::string_view, 7> kSecretNames{"pass", "pwd",    "psw", "token",
                                                       "key",  "secret", "auth"};

bool is_number(std::string_view text) {
  return std::ranges::all_of(text, [](unsigned char c) { return std::isdigit(c) != 0; });
}

// The @ that ends the account; npos if there is no account. An unencoded slash in a password ends the host
// early; the text in the port's position is then not a number.
std::size_t end_of_account(std::string_view rest) {
  const std::string_view authority = rest.substr(0, rest.find_first_of("/?#"));
  const std::size_t at = authority.rfind('@');
  if (at != std::string_view::npos || authority.starts_with('[')) return at;
  const std::size_t colon = authority.find(':');
  const bool port = colon == std::string_view::npos || is_number(authority.substr(colon + 1));
  return port ? std::string_view::npos : rest.rfind('@');
}

bool is_secret(std::string_view name) {
  std::string lower(name);
  std::ranges::transform(lower, lower.begin(), [](unsigned char c) { return std::tolower(c); });
  return std::ranges::any_of(kSecretNames,
                             [&](std::string_view word) { return lower.find(word) != std::string::npos; });
}

std::string shown_account(std::string_view account) {
  const std::size_t colon = account.find(':');
  if (colon == std::string_view::npos) return std::string(account);
  return std::string(account.substr(0, colon + 1)).append(kHidden);
}

// "user=me&pwd=***"
std::string shown_query(std::string_view query) {
  std::string shown;
  while (!query.empty()) {
    const std::size_t length = std::min(query.find('&'), query.size() - 1) + 1;
    const std::string_view parameter = query.substr(0, length);
    const std::size_t equals = parameter.find('=');
    const bool hide = equals != std::string_view::npos && is_secret(parameter.substr(0, equals));
    shown.append(hide ? parameter.substr(0, equals + 1) : parameter);
    if (hide) shown.append(kHidden).append(parameter.ends_with('&') ? "&" : "");
    query.remove_prefix(length);
  }
  return shown;
}

}  // namespace

std::string shown_address(const std::string& address) {
  const std::size_t scheme = address.find("://");
  if (scheme == std::string::npos) return address;
  std::string shown = address.substr(0, scheme + 3);
  std::string_view rest = std::string_view(address).substr(shown.size());
  if (const std::size_t at = end_of_account(rest); at != std::string_view::npos) {
    shown += shown_account(rest.substr(0, at));
    rest.remove_prefix(at);
  }
  const std::size_t question = std::min(rest.find('?'), rest.size());
  return shown.append(rest.substr(0, question)).append(shown_query(rest.substr(question)));
}

std::string with_shown_addresses(std::string text, const std::vector<std::string>& arguments) {
  for (const std::string& argument : arguments) {
    const std::string shown = shown_address(argument);
    if (shown == argument) continue;
    for (std::size_t at = 0; (at = text.find(argument, at)) != std::string::npos; at += shown.size()) {
      text.replace(at, argument.size(), shown);
    }
  }
  return text;
}

}  // namespace lm::host::base
