// Removes the oldest of what a camera has left.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "host/base/time_text.h"

namespace lm::host::outputs::retention {

// Where to look, as on the command line.
struct Places {
  std::vector<std::string> folders;  // of clips and snapshots
  std::vector<std::string> files;    // whose rotated parts are beside them
};

struct Limits {
  std::optional<std::chrono::seconds> age;
  std::optional<std::uint64_t> size;  // in total
};

struct Swept {
  std::size_t files = 0;
  std::uint64_t bytes = 0;
  std::string oldest, newest;  // of those removed
  std::string trouble;         // why a file could not be removed; empty if all could
};

// Removes the oldest files until the rest is within the limits. Only files that the program has named, clips,
// snapshots and rotated files, are looked at, and their age is the time in the name: what is being written
// has no such name yet. Also removes hidden parts of clips and snapshots that a killed run left a day ago.
Swept sweep(const Places& places, const Limits& limits, base::WallTime now);

// "removed 3 files (12.3 MB) beyond --keep or --keep-size: ... to ..."; empty if there were none.
std::string report(const Swept& swept);

}  // namespace lm::host::outputs::retention
