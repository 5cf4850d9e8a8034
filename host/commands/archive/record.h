// What is known about the run of one file, kept as run.json among its results.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "host/commands/run/figures.h"

namespace lm::host::commands::archive {

// A file is taken for unchanged while these stay.
struct SourceState {
  std::int64_t size = 0;
  std::string modified;  // seconds since 1970, to the billionth
  bool operator==(const SourceState&) const = default;
};

// Nothing when the file cannot be looked at.
std::optional<SourceState> source_state(const std::string& path);

struct Record {
  std::string path;
  SourceState source;
  std::vector<std::string> options;  // as passed on
  std::string settings;              // the digest of everything that results depend on
  int status = 0;                    // of the process
  std::string why;                   // empty for status 0
  run::Figures figures;              // without the time that the work took, which no two runs share
};

std::string to_json(const Record& record);

// Nothing for what is not such a text.
std::optional<Record> record_from(const std::string& json);

}  // namespace lm::host::commands::archive
