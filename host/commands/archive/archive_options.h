// Options of runs over many files on the command line.
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

  // The other options given, one argument each, for the runs over the single files.
  std::vector<std::string> passed_on;
};

// Adds the sources and the options.
void add_archive_options(CLI::App& run, ArchiveOptions& options);

// Once the command line is parsed: fills `passed_on`. Returns what is wrong with the options;
// empty when nothing is.
std::string complete_archive_options(const CLI::App& run, ArchiveOptions& options);

// The options of the run over one file: outputs are placed in `folder`, and the result lines go to a file
// there.
std::vector<std::string> options_for_folder(const std::vector<std::string>& passed_on,
                                            const std::string& folder);

}  // namespace lm::host::commands::archive
