// The record of one file's run: run.json in its result folder.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "host/commands/run/figures.h"

namespace lm::host::commands::archive {

// A file counts as unchanged while these are the same.
struct SourceState {
  std::int64_t size = 0;
  std::string modified;  // seconds since 1970, with nanoseconds
  bool operator==(const SourceState&) const = default;
};

// None if the file cannot be examined.
std::optional<SourceState> source_state(const std::string& path);

struct Record {
  std::string path;
  SourceState source;
  std::vector<std::string> options;  // as passed to the process
  std::string settings;              // the digest of everything that affects the results
  int status = 0;                    // of the process
  std::string why;                   // empty for status 0
  run::Figures figures;              // without the processing time, which differs between runs
};

std::string to_json(const Record& record);

// None if the text is not a record.
std::optional<Record> record_from(const std::string& json);

}  // namespace lm::host::commands::archive
