// What became of each file of an archive run.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "host/commands/run/figures.h"

namespace lm::host::commands::archive {

enum class Outcome {
  kOk,
  kIncomplete,  // there are results, but not of everything that should be in the file
  kFailed,      // no results
};

struct TableRow {
  std::string path;
  Outcome outcome = Outcome::kFailed;
  std::optional<run::Figures> figures;
  std::string results;  // the folder's name; empty when there is none
  std::string why;      // empty when ok
};

// For people: a line for each file, and the totals.
std::string table_text(const std::vector<TableRow>& rows);

// For programs: a row of names, then one for each file.
std::string table_csv(const std::vector<TableRow>& rows);

}  // namespace lm::host::commands::archive
