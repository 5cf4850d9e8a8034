// Command-line options of runs over many files.
#pragma once

#include <chrono>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace lm::host::commands::archive {

struct ArchiveOptions {
  std::vector<std::string> sources;           // as named; see list_files
  std::string out;                            // folder for the results; empty for a run over a single source
  int jobs = 0;                               // processes at a time; 0: one per processor
  std::string shard;                          // see parse_shard
  bool force = false;                         // reprocess finished files
  std::chrono::microseconds file_timeout{0};  // per-file time limit; 0: none

  // The other options given, one argument each, for the runs over single files.
  std::vector<std::string> passed_on;
};

// Adds the sources and the options.
void add_archive_options(CLI::App& run, ArchiveOptions& options);

// After parsing: fills `passed_on`. Returns what is wrong with the options; empty if nothing is.
std::string complete_archive_options(const CLI::App& run, ArchiveOptions& options);

// The options of the run over one file: outputs and result lines are written to `folder`.
std::vector<std::string> options_for_folder(const std::vector<std::string>& passed_on,
                                            const std::string& folder);

}  // namespace lm::host::commands::archive
