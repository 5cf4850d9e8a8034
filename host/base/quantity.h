// Sizes and ages on the command line.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

namespace lm::host::base {

// "50GB": a whole or decimal number and B, kB, MB, GB or TB (powers of 1000). None for any other text, and
// below 1 byte.
std::optional<std::uint64_t> parse_size(const std::string& text);

// "30d": a number and s, min, h, d or w. None for any other text, below a second, and above 100 years.
std::optional<std::chrono::seconds> parse_age(const std::string& text);

// "1.5 GB": with at most one decimal.
std::string size_text(std::uint64_t bytes);

}  // namespace lm::host::base
