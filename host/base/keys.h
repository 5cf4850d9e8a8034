// The keys that the program writes: in result lines, events, tables, progress, archive records, `check`,
// `tune`, `serve` and MQTT messages. docs/results.md documents them.
#pragma once

#include <cstddef>
#include <span>
#include <string_view>

namespace lm::host::base {

// Number of decimals for values from elsewhere, such as a configuration: written unchanged.
inline constexpr int kVerbatim = -1;

struct Key {
  std::string_view name;
  int decimals = 0;  // of fractional numbers, here and in arrays below this key
};

// In the order in which they are written.
std::span<const Key> keys();

// The position in that order; the number of keys for an unknown name.
std::size_t place_of(std::string_view name);

}  // namespace lm::host::base
