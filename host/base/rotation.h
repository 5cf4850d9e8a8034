// When a file that grows is renamed and a new one begun.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "host/base/time_text.h"

namespace lm::host::base {

// At most one of both; neither: never.
struct Rotation {
  bool daily = false;       // at midnight UTC
  std::uint64_t bytes = 0;  // before the file exceeds this size
};

// "day" or a size such as "100MB"; none for any other text.
std::optional<Rotation> parse_rotation(const std::string& text);

// "hall.jsonl" becomes "hall-2026-11-22.jsonl", or by size "hall-2026-11-22T15-30-12Z.jsonl", after the time
// of its last line.
std::string rotated_name(const std::string& path, const Rotation& rotation, WallTime last);

// The time in the name that `path` was given when it was rotated as `name` (both without folders), as text
// that sorts; empty if it is no such name.
std::string rotated_at(const std::string& path, const std::string& name);

// Whether `text` has the form of `pattern`, in which 0 stands for any digit.
bool has_form(std::string_view text, std::string_view pattern);

}  // namespace lm::host::base
