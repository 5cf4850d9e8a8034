#include "host/outputs/storage_options.h"

#include <CLI/CLI.hpp>

#include "host/base/quantity.h"

namespace lm::host::outputs {

void add_storage_options(CLI::App& run, StorageOptions& options) {
  const auto add = [&run](const char* name, const char* kind, const char* help, const char* wanted,
                          auto parse, auto& value) {
    run.add_option_function<std::string>(
           name, [&value, parse](const std::string& text) { value = *parse(text); }, help)
        ->type_name(kind)
        ->check([parse, wanted](const std::string& text) {
          return parse(text) ? "" : std::string("must be ") + wanted + ", not " + text;
        })
        ->group("Cameras");
  };
  add("--rotate", "WHEN", "Begin new result lines and events each day (day, UTC) or at a size such as 100MB",
      "day or a size such as 100MB", base::parse_rotation, options.rotation);
  add("--keep", "AGE", "Remove clips, snapshots and rotated files that are older, such as 30d",
      "an age such as 30d, 12h or 90min", base::parse_age, options.keep);
  add("--keep-size", "SIZE", "Remove the oldest of them while they are larger in total, such as 50GB",
      "a size such as 50GB or 500MB", base::parse_size, options.keep_size);
}

}  // namespace lm::host::outputs
