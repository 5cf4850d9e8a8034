// The keys that the program writes for other programs, wherever it writes them: result lines, events, tables,
// progress, records of archives, `check`, `tune`, `serve` and messages. docs/results.md says what they mean.
#pragma once

#include <cstddef>
#include <span>
#include <string_view>

namespace lm::host::base {

// Of a value that is not the program's own, such as a configuration: it is written as it is.
inline constexpr int kVerbatim = -1;

struct Key {
  std::string_view name;
  int decimals = 0;  // of numbers with a fraction, here and in the arrays below this key
};

// In the order in which an object has its members.
std::span<const Key> keys();

// The place in that order; the number of keys for a name that is none of them.
std::size_t place_of(std::string_view name);

}  // namespace lm::host::base
