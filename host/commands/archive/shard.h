// One machine's share of an archive.
#pragma once

#include <cstddef>
#include <string>

namespace lm::host::commands::archive {

struct Shard {
  std::size_t index = 0;  // the first is 0
  std::size_t count = 1;
};

// "2/8": the second of eight. "slurm": from the environment of a Slurm array task. Empty: everything. Throws
// Failure (kRefused) with the cause.
Shard parse_shard(const std::string& text);

// Whether the file at this position of the whole list, from 0, belongs to the shard.
constexpr bool belongs(const Shard& shard, std::size_t place) { return place % shard.count == shard.index; }

}  // namespace lm::host::commands::archive
