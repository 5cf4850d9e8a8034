// Command-line options of what a live source leaves on the disk.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>

#include "host/base/rotation.h"

namespace CLI {
class App;
}

namespace lm::host::outputs {

struct StorageOptions {
  base::Rotation rotation;                   // of result lines and events
  std::optional<std::chrono::seconds> keep;  // remove what is older
  std::optional<std::uint64_t> keep_size;    // remove the oldest of what exceeds this

  bool removes() const { return keep.has_value() || keep_size.has_value(); }
  bool any() const { return rotation.daily || rotation.bytes > 0 || removes(); }
};

void add_storage_options(CLI::App& run, StorageOptions& options);

}  // namespace lm::host::outputs
