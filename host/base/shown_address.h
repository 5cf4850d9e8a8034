// Addresses as others may see them.
#pragma once

#include <string>
#include <vector>

namespace lm::host::base {

// The address with "***" in the place of passwords: the account's before the host, and those of the usual
// names behind the question mark. Everything else, paths too, stays as it is.
std::string shown_address(const std::string& address);

// `text` with all of these arguments as others may see them.
std::string with_shown_addresses(std::string text, const std::vector<std::string>& arguments);

}  // namespace lm::host::base
