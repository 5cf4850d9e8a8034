// Addresses without passwords, for messages and records.
#pragma once

#include <string>
#include <vector>

namespace lm::host::base {

// The address with "***" in place of passwords: the account's, and those of the usual query parameters.
// Everything else, including paths, is unchanged.
std::string shown_address(const std::string& address);

// `text` with passwords removed from each of these arguments where they occur in it.
std::string with_shown_addresses(std::string text, const std::vector<std::string>& arguments);

}  // namespace lm::host::base
