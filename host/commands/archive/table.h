// The outcome of each file of an archive run.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "host/commands/run/figures.h"

namespace lm::host::commands::archive {

enum class Outcome {
  kOk,
  kIncomplete,  // results exist, but the file could not be analysed completely
  kFailed,      // no results
};

struct TableRow {
  std::string path;
  Outcome outcome = Outcome::kFailed;
  std::optional<run::Figures> figures;
  std::string results;  // the folder's name; empty if there is none
  std::string why;      // empty if ok
};

// For people: one line per file, and the totals.
std::string table_text(const std::vector<TableRow>& rows);

// As CSV: a header, then one row per file.
std::string table_csv(const std::vector<TableRow>& rows);

}  // namespace lm::host::commands::archive
